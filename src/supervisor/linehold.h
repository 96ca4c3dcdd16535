#pragma once

#include <functional>

namespace telvane {

// Who is using the line for more than one exchange: a monitoring tick, a Start's
// re-read, a command run at once. A reply wait lets the event loop run, and a tick that
// started there would find the line taken and count every refused exchange against
// its instrument; so no tick starts while anybody holds the line, and a Start or
// Reload clicked meanwhile waits until the last holder lets go.
class LineHolds
{
public:
    bool held() const { return m_count > 0; }

    // Called each time the last holder lets go.
    void setReleasedHandler(std::function<void()> handler) { m_released = std::move(handler); }

private:
    friend class LineHold;

    int m_count = 0;
    std::function<void()> m_released;
};

// Holds the line for as long as it lives.
class LineHold
{
public:
    explicit LineHold(LineHolds &holds)
        : m_holds(holds)
    {
        ++m_holds.m_count;
    }
    ~LineHold()
    {
        if (--m_holds.m_count == 0 && m_holds.m_released)
            m_holds.m_released();
    }
    LineHold(const LineHold &) = delete;
    LineHold &operator=(const LineHold &) = delete;

private:
    LineHolds &m_holds;
};

} // namespace telvane
