#pragma once

#include "Platform/TrayHost.h"

#include <utility>

namespace vesk {

/// A panel that comes and goes as the test says.
class FakeTrayHost final : public TrayHost {
public:
    Kind kind() const override { return m_kind; }
    void setChangeHandler(std::function<void()> handler) override { m_changed = std::move(handler); }

    void become(Kind kind)
    {
        m_kind = kind;
        if (m_changed) {
            m_changed();
        }
    }

private:
    Kind m_kind = Kind::none;
    std::function<void()> m_changed;
};

} // namespace vesk
