// A control line that follows a script: what the server says and what the client must send.
#pragma once

#include "ftp/control_line.h"

#include <deque>
#include <gtest/gtest.h>
#include <string>

class ScriptedLine final : public ftp::ControlLine {
public:
    ScriptedLine &server(const std::string &reply)
    {
        m_script.push_back({ true, reply });
        return *this;
    }
    ScriptedLine &client(const std::string &command)
    {
        m_script.push_back({ false, command });
        return *this;
    }
    [[nodiscard]] bool finished() const { return m_script.empty(); }

    ftp::Awaitable<ftp::Result<ftp::Reply>> readReply(ftp::Milliseconds) override
    {
        if (m_script.empty() || !m_script.front().server) {
            ADD_FAILURE() << "the client waits for a reply that the script does not have";
            co_return ftp::fail(ftp::ErrorKind::Timeout, "script");
        }
        ftp::ReplyParser parser;
        ftp::Reply reply;
        std::string text = m_script.front().text;
        m_script.pop_front();
        for (std::size_t at = 0; at <= text.size();) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            auto complete = parser.add(text.substr(at, end - at));
            if (!complete) {
                co_return tl::unexpected(complete.error());
            }
            if (*complete) {
                co_return parser.take();
            }
            at = end + 1;
        }
        ADD_FAILURE() << "an unfinished reply in the script: " << text;
        co_return ftp::fail(ftp::ErrorKind::Protocol, "script");
    }
    ftp::Awaitable<ftp::Status> send(std::string_view command) override
    {
        ftp::Status queued = queue(command);
        co_return queued;
    }
    ftp::Status queue(std::string_view command) override
    {
        auto encoded = ftp::encodeCommand(command);
        if (!encoded) {
            return tl::unexpected(encoded.error());
        }
        if (m_script.empty() || m_script.front().server || m_script.front().text != command) {
            ADD_FAILURE() << "unexpected command: " << command;
        } else {
            m_script.pop_front();
        }
        return {};
    }
    ftp::Awaitable<ftp::Status> flush() override { co_return ftp::Status {}; }

private:
    struct Step {
        bool server;
        std::string text;
    };
    std::deque<Step> m_script;
};
