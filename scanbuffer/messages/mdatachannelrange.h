#pragma once

#include "scanbuffer/messages/mdata.h"
#include "valueclasses/channels/channelrangedefinition.h"

/// The channel grid of the scans that follow, with a number that the display acknowledges.
class SPECTREE_EXPORT MDataChannelRangeDefinition final : public MData {
public:
    MDataChannelRangeDefinition(const values::ChannelRangeDefinition &definition, int id);
    /// \throws values::DuplicateChannelIdException as well as KRException
    explicit MDataChannelRangeDefinition(const char **cursor);

    const values::ChannelRangeDefinition &asChannelRangeDefinition() const { return m_definition; }
    int getId() const { return m_id; }

protected:
    std::size_t payloadSize() const override { return m_image.size() + sizeof(m_id); }
    char *writePayload(char *destination) const override;

private:
    values::ChannelRangeDefinition m_definition;
    std::string m_image; // of m_definition
    int m_id;
};
