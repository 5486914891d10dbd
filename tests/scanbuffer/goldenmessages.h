#pragma once

#include "byteimages.h"
#include "scanbuffer/mdatatypes.h"

#include <memory>
#include <string>
#include <vector>

/// One message of each carrier, built from fields, with its payload written out by hand and the
/// types that carry it.
struct GoldenMessage {
    std::string name;
    std::shared_ptr<MData> message;
    std::string payload;
    std::vector<int> types;

    /// The whole image under one of the types.
    std::string image(int type) const;
};

const std::vector<GoldenMessage> &goldenMessages();
