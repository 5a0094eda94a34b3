#include "ftp/listing_dialects.h"

#include <array>

namespace ftp::dialects {
namespace {

constexpr std::array<Text, 12> english { "jan", "feb", "mar", "apr", "may", "jun",
                                         "jul", "aug", "sep", "oct", "nov", "dec" };

struct Month {
    Text name;
    int number;
};

/// Full names in German, English, French, Italian, Spanish, Portuguese, Dutch, Swedish, Danish
/// and Norwegian without accents, and short forms that do not begin like them.
constexpr std::array months {
    Month { "january", 1 },    Month { "januar", 1 },    Month { "janner", 1 },
    Month { "janvier", 1 },    Month { "gennaio", 1 },   Month { "enero", 1 },
    Month { "janeiro", 1 },    Month { "februar", 2 },   Month { "fevrier", 2 },
    Month { "febbraio", 2 },   Month { "febrero", 2 },   Month { "fevereiro", 2 },
    Month { "march", 3 },      Month { "marz", 3 },      Month { "mrz", 3 },
    Month { "maerz", 3 },      Month { "mars", 3 },      Month { "marzo", 3 },
    Month { "marco", 3 },      Month { "maart", 3 },     Month { "mrt", 3 },
    Month { "marts", 3 },      Month { "april", 4 },     Month { "avril", 4 },
    Month { "aprile", 4 },     Month { "abril", 4 },     Month { "may", 5 },
    Month { "mai", 5 },        Month { "maggio", 5 },    Month { "mayo", 5 },
    Month { "maio", 5 },       Month { "mei", 5 },       Month { "maj", 5 },
    Month { "june", 6 },       Month { "juni", 6 },      Month { "juin", 6 },
    Month { "giugno", 6 },     Month { "junio", 6 },     Month { "junho", 6 },
    Month { "july", 7 },       Month { "juli", 7 },      Month { "juillet", 7 },
    Month { "luglio", 7 },     Month { "julio", 7 },     Month { "julho", 7 },
    Month { "august", 8 },     Month { "aout", 8 },      Month { "agosto", 8 },
    Month { "september", 9 },  Month { "septembre", 9 }, Month { "settembre", 9 },
    Month { "septiembre", 9 }, Month { "setiembre", 9 }, Month { "setembro", 9 },
    Month { "october", 10 },   Month { "oktober", 10 },  Month { "octobre", 10 },
    Month { "ottobre", 10 },   Month { "octubre", 10 },  Month { "outubro", 10 },
    Month { "november", 11 },  Month { "novembre", 11 }, Month { "noviembre", 11 },
    Month { "novembro", 11 },  Month { "december", 12 }, Month { "dezember", 12 },
    Month { "decembre", 12 },  Month { "dicembre", 12 }, Month { "diciembre", 12 },
    Month { "dezembro", 12 },  Month { "desember", 12 }, Month { "januari", 1 },
    Month { "february", 2 },   Month { "februari", 2 },  Month { "augustus", 8 },
    Month { "augusti", 8 },
};

/// Letters below the accents of Latin-1, from 0xC0 on.
constexpr Text plainLetters = "aaaaaaaceeeeiiiidnooooo ouuuuy saaaaaaaceeeeiiiidnooooo ouuuuy y";

constexpr std::size_t longest = 10;
using Letters = std::array<char, longest>;

/// Lower-case letters of a name without accents and without the dot at its end.
/// @return their number, 0 when the name holds anything else or is too long
std::size_t fold(Text name, Letters &letters)
{
    if (!name.empty() && name.back() == '.') {
        name.remove_suffix(1);
    }
    std::size_t count = 0;
    for (std::size_t i = 0; i < name.size(); ++i) {
        auto code = static_cast<unsigned char>(name[i]);
        if (code == 0xC3 && i + 1 < name.size()) { // a letter of Latin-1 in UTF-8
            code = static_cast<unsigned char>(0xC0U
                                              | (static_cast<unsigned char>(name[++i]) & 0x3FU));
        }
        const char letter
            = code >= 0xC0 ? plainLetters[code - 0xC0U] : lower(static_cast<char>(code));
        if (letter < 'a' || letter > 'z' || count == longest) {
            return 0;
        }
        letters[count++] = letter;
    }
    return count;
}

} // namespace

int monthOf(Text name)
{
    constexpr std::size_t shortest = 3;
    Letters letters {};
    const std::size_t count = fold(name, letters);
    if (count < shortest) {
        return 0;
    }
    const Text folded(letters.data(), count);
    if (count == shortest) {
        for (std::size_t i = 0; i < english.size(); ++i) {
            if (folded == english[i]) {
                return static_cast<int>(i) + 1;
            }
        }
    }
    int found = 0;
    for (const Month &month : months) {
        if (month.name.starts_with(folded)) {
            if (found != 0 && found != month.number) {
                return 0; // "jui" may be June or July
            }
            found = month.number;
        }
    }
    return found;
}

} // namespace ftp::dialects
