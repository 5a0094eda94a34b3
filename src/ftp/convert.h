#pragma once

#include <string>
#include <string_view>

namespace ftp {

/// Conversions of the transfer types ASCII and EBCDIC. Each object converts one file, fed in blocks
/// of any size: convert() appends to out what is certain, finish() what was held back.

/// Local text to the wire, TYPE A: an LF without CR before it becomes CR LF (RFC 959, 3.1.1.1).
class AsciiSender {
public:
    void convert(std::string_view in, std::string &out);
    void finish(std::string &out);

private:
    bool m_afterCr = false;
};

/// The wire to local text, TYPE A: a CR is dropped only before an LF.
class AsciiReceiver {
public:
    void convert(std::string_view in, std::string &out);
    void finish(std::string &out);

private:
    bool m_heldCr = false;
};

/// Local text to the wire, TYPE E: bytes read as Latin-1 in code page 1047; LF and CR LF become NL.
class EbcdicSender {
public:
    void convert(std::string_view in, std::string &out);
    void finish(std::string &out);

private:
    bool m_heldCr = false;
};

/// The wire to local text, TYPE E: code page 1047 to Latin-1 bytes; both NL (0x15) and LF (0x25)
/// become LF, for hosts differ.
class EbcdicReceiver {
public:
    void convert(std::string_view in, std::string &out);
    void finish(std::string &out);
};

} // namespace ftp
