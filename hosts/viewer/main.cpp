#include "hosts/host/GlPlatform.h"
#include "hosts/viewer/StandardStreams.h"
#include "hosts/viewer/Viewer.h"
#include "hosts/viewer/ViewerOptions.h"

#include <QApplication>
#include <QIcon>

#include <exception>
#include <iostream>
#include <memory>

namespace {

/// What its entry for the desktop and its icon are called, too.
const QString program = QStringLiteral("kelvar-view");

int complain(int code, const QByteArray& text)
{
    std::cerr << "view: " << text.constData() << std::endl;
    return code;
}

/// Widgets only where there is a window with menus: they take their time to start.
std::unique_ptr<QGuiApplication> makeApplication(const ViewerOptions& options, int& count, char** arguments)
{
    QCoreApplication::setOrganizationName(QStringLiteral("Kelvar"));
    QCoreApplication::setApplicationName(program);
    QGuiApplication::setDesktopFileName(program);
    if (options.windowless() || options.bare) {
        return std::make_unique<QGuiApplication>(count, arguments);
    }
    auto application = std::make_unique<QApplication>(count, arguments);
    QApplication::setWindowIcon(QIcon::fromTheme(program));
    return application;
}

} // namespace

int main(int argc, char** argv)
{
    StandardStreams::open();
    try {
        QStringList arguments;
        for (int i = 1; i < argc; ++i) {
            arguments.append(QString::fromLocal8Bit(argv[i]));
        }
        const ViewerOptions options = ViewerOptions::parse(arguments);
        if (options.showHelp) {
            std::cout << qPrintable(ViewerOptions::help());
            return Viewer::Done;
        }
        if (options.showVersion) {
            std::cout << "view " << KELVAR_VERSION << std::endl;
            return Viewer::Done;
        }
        if (qEnvironmentVariableIsEmpty("DISPLAY")) {
            return complain(Viewer::NoOutput, "there is no display; xvfb-run -a brings one along");
        }
        if (!hostkit::GlPlatform::displayAnswers()) {
            return complain(Viewer::NoOutput, "the display \"" + qgetenv("DISPLAY") + "\" cannot be reached");
        }
        hostkit::GlPlatform::prepare();
        int noArguments = 1;
        const auto application = makeApplication(options, noArguments, argv);
        return Viewer(options).run();
    } catch (const ViewerOptions::Error& error) {
        std::cerr << "view: " << error.what() << "; --help tells the options" << std::endl;
        return Viewer::WrongUsage;
    } catch (const Viewer::Failure& failure) {
        return complain(failure.code, failure.what());
    } catch (const std::exception& error) {
        return complain(Viewer::NoOutput, error.what());
    }
}
