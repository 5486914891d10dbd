#pragma once

#include "valueclasses/value.h"
#include "valuetree/tree.h"
#include "valuetree/valueitem.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace values {

/// Writes down "name code" for everything that it watches, in one list.
class TreeLog {
public:
    class Watcher : public IObserver {
    public:
        Watcher(TreeLog &log, std::string name) : m_log(log), m_name(std::move(name)) {}
        void Update(Observable *, TChangeCode code) override
        {
            m_log.lines.push_back(m_name + ' ' + std::to_string(code));
            if (const auto found = m_log.then.find(m_log.lines.back()); found != m_log.then.end())
                std::function(found->second)(); // a copy: it may clear the map
        }

    private:
        TreeLog &m_log;
        std::string m_name;
    };

    IObserver *watch(Observable *subject, const std::string &name)
    {
        m_watchers.push_back(std::make_unique<Watcher>(*this, name));
        subject->AddObserver(m_watchers.back().get());
        return m_watchers.back().get();
    }
    std::vector<std::string> take() { return std::exchange(lines, {}); }

    std::vector<std::string> lines;
    std::map<std::string, std::function<void()>> then; // line, what happens when it is written

private:
    std::vector<std::unique_ptr<Watcher>> m_watchers;
};

using Int = Value<int>;

inline std::string names(const IManageValue &place)
{
    std::string text;
    place.AddTreeString(text, 0, 2);
    return text;
}

} // namespace values
