#include "ftp/namebook.h"
#include "ftp/oddnames.h"
#include "ftp/path.h"
#include "ftp/text.h"
#include "lines.h"
#include "require.h"

#include <set>
#include <string>

namespace {

/// Every name of a folder has a text of its own, and that text leads back to its bytes.
void requireOwnTexts(const std::set<std::string> &folder, ftp::NameBook &book)
{
    ftp::OddNames odd;
    for (const std::string &raw : folder) {
        odd.learn(raw);
    }
    for (const std::string &raw : folder) {
        odd.compare(raw);
    }
    std::set<std::string> texts;
    for (const std::string &raw : folder) {
        const std::string text = odd.text(raw);
        REQUIRE(ftp::isUtf8(text));
        REQUIRE(texts.insert(text).second);
        book.keep("/ordner/", text, raw);
    }
    for (const std::string &raw : folder) {
        REQUIRE(book.encodeName("/ordner", odd.text(raw)) == raw);
        REQUIRE(book.encode(odd.text(raw), "/ordner") == raw);
        REQUIRE(book.encode("/ordner/" + odd.text(raw), "/") == "/ordner/" + raw);
    }
}

} // namespace

/// The names of one folder, a line each. The first byte tells what the server announced.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    ftp::NameBook book;
    book.setUtf8Announced(data[0] % 2U == 0);
    std::set<std::string> folder;
    forEachInputLine(data + 1, size - 1, [&folder](std::string_view line) {
        if (ftp::isSafeName(line)) {
            folder.emplace(line);
        }
    });
    requireOwnTexts(folder, book);
    forEachInputLine(data + 1, size - 1, [&book](std::string_view line) {
        const std::string path = "/" + std::string(line);
        REQUIRE(book.encode(book.decodePath(path), "/") == path);
    });
    return 0;
}
