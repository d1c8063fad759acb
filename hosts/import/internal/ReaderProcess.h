#pragma once

#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace hostkit {

/// A running model_reader, which goes with this object.
///
/// It is in a process group of its own: Ctrl-C on the terminal stops the program that waits for it, which
/// then stops it.
class ReaderProcess
{
public:
    /// Why it ended.
    enum class Ending
    {
        /// Its processor time was used up.
        OutOfTime,
        /// It said that its memory was used up.
        OutOfMemory,
        /// From outside, as the kernel does it when memory gets short.
        Killed,
        Crash
    };

    /// Starts it. Throws std::runtime_error with the reason.
    ReaderProcess(const QString& program, const QStringList& arguments);

    /// Ends it.
    ~ReaderProcess();
    ReaderProcess(const ReaderProcess&) = delete;
    ReaderProcess& operator=(const ReaderProcess&) = delete;

    /// File descriptor to read its standard output from.
    int output() const { return output_; }

    /// Waits for its end. To be called once, when its output has ended.
    Ending ending();

private:
    int output_ = -1;
    pid_t process_ = -1;
};

} // namespace hostkit
