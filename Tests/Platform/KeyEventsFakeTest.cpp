#include "Contracts/KeyEventsContract.h"
#include "Support/FakeKeyEvents.h"

namespace vesk {

namespace {

class FakeBench final : public KeyEventsBench {
public:
    KeyEvents &events() override { return m_events; }
    void press(HotkeyKey key) override { m_events.flagsChanged(virtualKeyCode(key), modifierFlag(key)); }
    void release(HotkeyKey key) override { m_events.flagsChanged(virtualKeyCode(key), 0); }
    void letter() override { m_events.keyDown(); }
    bool wait(const std::function<bool()> &condition) override { return condition(); }

private:
    FakeKeyEvents m_events;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Fake, KeyEventsContract, testing::Values([]() -> std::unique_ptr<KeyEventsBench> {
                             return std::make_unique<FakeBench>();
                         }));

} // namespace vesk
