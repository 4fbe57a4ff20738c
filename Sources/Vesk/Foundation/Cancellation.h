#pragma once

#include <atomic>
#include <memory>

namespace vesk {

/// Says whether a piece of work is still wanted. Copies share one answer; asked from any thread. The holder
/// of one copy cancels, the work asks its own copy after every wait, also when what started it is long gone.
class CancellationToken {
public:
    void cancel() { m_isCancelled->store(true); }
    bool isCancelled() const { return m_isCancelled->load(); }

private:
    std::shared_ptr<std::atomic<bool>> m_isCancelled = std::make_shared<std::atomic<bool>>(false);
};

} // namespace vesk
