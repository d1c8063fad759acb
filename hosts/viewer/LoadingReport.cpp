#include "hosts/viewer/LoadingReport.h"

#include <iostream>

#include <unistd.h>

LoadingReport::LoadingReport(const QString& what)
    : what_(what)
    , terminal_(isatty(STDERR_FILENO) != 0)
{
    clock_.start();
}

LoadingReport::~LoadingReport()
{
    clear();
}

void LoadingReport::clear()
{
    if (told_ && terminal_) {
        std::cerr << "\r\033[K" << std::flush;
    }
    told_ = false;
}

void LoadingReport::tell(float share)
{
    if (!due() || (told_ && !terminal_)) {
        return;
    }
    told_ = true;
    if (terminal_) {
        std::cerr << "\r\033[Kloading " << qPrintable(what_) << ' ' << static_cast<int>(share * 100.0f)
                  << " %, Ctrl-C stops" << std::flush;
    } else {
        std::cerr << "loading " << qPrintable(what_) << std::endl;
    }
}
