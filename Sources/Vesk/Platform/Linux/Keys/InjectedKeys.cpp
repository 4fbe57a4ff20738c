#include "Platform/Linux/Keys/InjectedKeys.h"

#include <algorithm>

namespace vesk {

void InjectedKeys::expect(int keyCode, bool isPress, Time now)
{
    const std::lock_guard lock(m_mutex);
    m_expected.push_back({keyCode, isPress, now});
}

bool InjectedKeys::take(int keyCode, bool isPress, Time now)
{
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_expected, [now](const Expected &e) { return now - e.since > Lifetime; });
    const auto found = std::ranges::find_if(
        m_expected, [&](const Expected &e) { return e.keyCode == keyCode && e.isPress == isPress; });
    if (found == m_expected.end()) {
        return false;
    }
    m_expected.erase(found);
    return true;
}

} // namespace vesk
