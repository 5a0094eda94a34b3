// Another program to drag files from: a window full of nothing but a drag source.
//
//   dragsource X Y FILE..      shows itself at X, Y; a press of the mouse drags the files
//
// Prints "taken" or "refused" when a drag has ended.
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>
#include <cstdio>

namespace {

class Source : public QWidget {
public:
    explicit Source(QList<QUrl> files)
        : m_files(std::move(files))
    {
    }

protected:
    void mouseMoveEvent(QMouseEvent *event) override
    {
        if (!event->buttons().testFlag(Qt::LeftButton)) {
            return;
        }
        auto *drag = new QDrag(this);
        auto *carried = new QMimeData;
        carried->setUrls(m_files);
        drag->setMimeData(carried);
        std::puts(drag->exec(Qt::CopyAction) == Qt::CopyAction ? "taken" : "refused");
        std::fflush(stdout);
    }

private:
    QList<QUrl> m_files;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QList<QUrl> files;
    for (const QString &file : arguments.mid(3)) {
        files.append(QUrl::fromLocalFile(file));
    }
    Source source(files);
    source.setGeometry(arguments.value(1).toInt(), arguments.value(2).toInt(), 120, 80);
    source.show();
    return QApplication::exec();
}
