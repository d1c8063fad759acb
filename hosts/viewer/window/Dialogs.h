#pragma once

#include <QImage>
#include <QObject>
#include <QString>

class Appearance;
class Document;
class Selection;
class QWidget;

namespace hostkit {
class SceneWidget;
struct PictureOptions;
} // namespace hostkit

/// Asks a person, and does what the answer is. What cannot be done is told by failed().
class Dialogs : public QObject
{
    Q_OBJECT

public:
    /// All are borrowed and have to live as long; `window` stands below the dialogs.
    Dialogs(hostkit::SceneWidget& view, Document& document, Appearance& appearance, Selection& selection,
            QWidget& window);

    void open();
    void saveState();
    void savePicture();
    void copyPicture();
    void chooseBackground();
    void chooseColor();
    void chooseOpacity();
    void help();
    void about();

    /// Closes the window.
    void quit();

Q_SIGNALS:
    void failed(const QString& reason);
    void done(const QString& what);

private:
    QString suggested(const QString& suffix) const;
    QSize viewSize() const;
    QImage picture(const QSize& size, const hostkit::PictureOptions& options);
    void write(const QImage& picture, const QString& file, const hostkit::PictureOptions& options);

    hostkit::SceneWidget& view_;
    Document& document_;
    Appearance& appearance_;
    Selection& selection_;
    QWidget& window_;
};
