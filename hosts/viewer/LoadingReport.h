#pragma once

#include <QElapsedTimer>
#include <QString>

/// Tells on the terminal how far loading is, once it has taken half a second. A terminal gets one line that
/// changes, anything else one line in all.
class LoadingReport
{
public:
    /// `what` is what is being loaded.
    explicit LoadingReport(const QString& what);

    ~LoadingReport();
    LoadingReport(const LoadingReport&) = delete;
    LoadingReport& operator=(const LoadingReport&) = delete;

    /// `share` is 0 to 1. To be called now and then.
    void tell(float share);

    /// Takes the line off the terminal; to be called when loading has ended.
    void clear();

    /// It takes long enough to tell.
    bool due() const { return clock_.elapsed() >= 500; }

private:
    QString what_;
    QElapsedTimer clock_;
    bool terminal_;
    bool told_ = false;
};
