#pragma once

#include "ftp/convert.h"
#include "ftp/session.h"

#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace ftp {

/// Wire form of a local file, by transfer type; for binary the file as it is.
class Sender {
public:
    explicit Sender(Type type)
    {
        if (type == Type::Ascii) {
            m_converter = AsciiSender {};
        } else if (type == Type::Ebcdic) {
            m_converter = EbcdicSender {};
        }
    }
    [[nodiscard]] bool plain() const { return std::holds_alternative<std::monostate>(m_converter); }
    /// Converts a block; an empty one ends the text.
    std::string_view convert(std::string_view block)
    {
        if (plain()) {
            return block;
        }
        m_text.clear();
        std::visit(
            [&](auto &converter) {
                if constexpr (!std::is_same_v<std::decay_t<decltype(converter)>, std::monostate>) {
                    block.empty() ? converter.finish(m_text) : converter.convert(block, m_text);
                }
            },
            m_converter);
        return m_text;
    }

private:
    std::variant<std::monostate, AsciiSender, EbcdicSender> m_converter;
    std::string m_text;
};

} // namespace ftp
