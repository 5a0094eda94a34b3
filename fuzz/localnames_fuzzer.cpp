#include "ftp/ftplocalnames.h"
#include "ftp/text.h"
#include "require.h"

/// The name of a local file.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const QByteArray name(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const bool utf8 = ftp::isUtf8({ name.constData(), size });
    const QString text = textOfName(name);
    REQUIRE(bytesOfName(text) == name); // so that no two names have one text
    REQUIRE(holdsRawBytes(text) == !utf8);
    REQUIRE(!holdsRawBytes(shownName(text)));
    REQUIRE(!utf8 || shownName(text) == text);
    const QString remote = nameForServer(text);
    REQUIRE(!holdsRawBytes(remote));
    REQUIRE(!utf8 || remote == text);
    return 0;
}
