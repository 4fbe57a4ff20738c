#pragma once

#include <QByteArrayView>

#include <utility>

namespace vesk {

/// Waits until the descriptor can be read (POLLIN) or written (POLLOUT), or has failed. For the standard
/// streams, which a launcher may hand over non-blocking: they are open in other programs as well, so they
/// stay as they are.
void waitUntilReady(int descriptor, short events);

/// Writes all of it, however small the pieces that the system takes; waits where the descriptor does not. 0
/// or the error number.
int writeAll(int descriptor, QByteArrayView bytes);

/// A descriptor of the operating system that is closed on every way out.
class Descriptor {
public:
    /// Takes over what open() and its like return; negative for none.
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int number() const { return m_number; }

    /// 0, or the error number: closing reports what writing did not, such as a full quota on a network file
    /// system.
    int close();

private:
    int m_number;
};

} // namespace vesk
