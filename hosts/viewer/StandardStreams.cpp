#include "hosts/viewer/StandardStreams.h"

#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

void StandardStreams::open()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) < 0) {
            static_cast<void>(::open("/dev/null", O_RDWR)); // takes the lowest descriptor that is free
        }
    }
}
