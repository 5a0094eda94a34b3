// Renders an SVG into square PNGs, one per size: rendericon picture.svg folder name size...
// writes folder/<size>x<size>/apps/name.png. Runs while the package is built, without a display.
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char **argv)
{
    if (argc < 5) {
        std::fputs("rendericon picture.svg folder name size...\n", stderr);
        return 2;
    }
    QSvgRenderer picture(QString::fromLocal8Bit(argv[1]));
    if (!picture.isValid()) {
        std::fprintf(stderr, "%s is no picture\n", argv[1]);
        return 1;
    }
    for (int i = 4; i < argc; ++i) {
        const QString size = QString::fromLatin1(argv[i]);
        const QString folder = QString::fromLocal8Bit(argv[2]) + u'/' + size + u'x' + size
            + QStringLiteral("/apps/");
        QImage image(size.toInt(), size.toInt(), QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        picture.render(&painter);
        painter.end();
        if (!QDir().mkpath(folder)
            || !image.save(folder + QString::fromLocal8Bit(argv[3]) + QStringLiteral(".png"))) {
            std::fprintf(stderr, "cannot write below %s\n", argv[2]);
            return 1;
        }
    }
    return 0;
}
