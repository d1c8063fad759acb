#pragma once

#include <QProcess>

namespace kelvartest {

/// An X server of one's own, without a window manager; DISPLAY names it while it lives.
class VirtualDisplay
{
public:
    /// Ends the program when there is none to be had.
    VirtualDisplay();
    ~VirtualDisplay();

private:
    QProcess server_;
};

} // namespace kelvartest
