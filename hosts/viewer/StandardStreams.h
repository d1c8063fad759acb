#pragma once

/// The descriptors 0 to 2 of the program.
struct StandardStreams
{
    /// Opens /dev/null on those that are closed. To be called before anything else is opened: a display or a
    /// file that came to be descriptor 1 would get what is printed.
    static void open();
};
