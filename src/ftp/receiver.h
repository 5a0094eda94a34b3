#pragma once

#include "ftp/convert.h"
#include "ftp/localfile.h"
#include "ftp/session.h"

#include <variant>

namespace ftp {

/// Local form of what comes over the wire, by transfer type.
class Receiver {
public:
    explicit Receiver(Type type)
    {
        if (type == Type::Ascii) {
            m_converter = AsciiReceiver {};
        } else if (type == Type::Ebcdic) {
            m_converter = EbcdicReceiver {};
        }
    }

    Status write(IncomingFile &file, std::string_view bytes)
    {
        if (std::holds_alternative<std::monostate>(m_converter)) {
            return file.write(bytes);
        }
        m_text.clear();
        if (auto *ascii = std::get_if<AsciiReceiver>(&m_converter)) {
            ascii->convert(bytes, m_text);
        } else if (auto *ebcdic = std::get_if<EbcdicReceiver>(&m_converter)) {
            ebcdic->convert(bytes, m_text);
        }
        return file.write(m_text);
    }

    Status finish(IncomingFile &file)
    {
        m_text.clear();
        if (auto *ascii = std::get_if<AsciiReceiver>(&m_converter)) {
            ascii->finish(m_text);
        } else if (auto *ebcdic = std::get_if<EbcdicReceiver>(&m_converter)) {
            ebcdic->finish(m_text);
        }
        return file.write(m_text);
    }

private:
    std::variant<std::monostate, AsciiReceiver, EbcdicReceiver> m_converter;
    std::string m_text;
};

} // namespace ftp
