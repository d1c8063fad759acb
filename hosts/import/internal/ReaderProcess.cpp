#include "hosts/import/internal/ReaderProcess.h"

#include "hosts/import/internal/ReaderProtocol.h"

#include <QFile>

#include <csignal>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace hostkit {

namespace {

/// What a process starts with: no input, the pipe as its output, no signal blocked or ignored.
class SpawnSettings
{
public:
    explicit SpawnSettings(int output)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes,
                                 POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        sigaddset(&signals, SIGXCPU);
        sigaddset(&signals, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes, &signals);
    }
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

} // namespace

ReaderProcess::ReaderProcess(const QString& program, const QStringList& arguments)
{
    std::vector<std::string> words = {QFile::encodeName(program).toStdString()};
    words.reserve(static_cast<std::size_t>(arguments.size()) + 1);
    for (const QString& argument : arguments) {
        words.push_back(QFile::encodeName(argument).toStdString());
    }
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);

    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error(std::strerror(errno));
    }
    output_ = ends[0];
    const SpawnSettings settings(ends[1]);
    const int failure = ::posix_spawn(&process_, pointers[0], &settings.actions, &settings.attributes,
                                      pointers.data(), environ);
    ::close(ends[1]);
    if (failure != 0) {
        ::close(output_);
        throw std::runtime_error("the program " + words[0] + " cannot be started: " + std::strerror(failure));
    }
}

ReaderProcess::~ReaderProcess()
{
    ::close(output_);
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
}

ReaderProcess::Ending ReaderProcess::ending()
{
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    if (WIFSIGNALED(status)) {
        return WTERMSIG(status) == SIGXCPU   ? Ending::OutOfTime
               : WTERMSIG(status) == SIGKILL ? Ending::Killed
                                             : Ending::Crash;
    }
    return WEXITSTATUS(status) == ReaderProtocol::outOfMemory ? Ending::OutOfMemory : Ending::Crash;
}

} // namespace hostkit
