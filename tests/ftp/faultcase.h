// A client and a server that does wrong what it is told to, for tests of the engine.
#pragma once

#include "ftp/run.h"
#include "servers/faultserver.h"
#include "servers/fixture.h"

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <string>

class FaultCase : public testing::Test {
protected:
    explicit FaultCase(const std::string &address = "127.0.0.1")
        : server(address)
        , m_address(address)
    {
    }

    /// A client that is still to open its session; its settings may be changed before.
    TestClient &prepared(ftp::Encryption encryption = ftp::Encryption::Never, int sessions = 1)
    {
        m_client = std::make_unique<TestClient>(server.port(), server.user(), server.password(),
                                                encryption, sessions);
        m_client->login().host = m_address;
        m_client->login().timeout = std::chrono::milliseconds(2000);
        m_client->trust(ftp::Trust::Once);
        return *m_client;
    }
    ftp::Client &connected(ftp::Encryption encryption = ftp::Encryption::Never, int sessions = 1)
    {
        const ftp::Status opened = prepared(encryption, sessions).open();
        EXPECT_TRUE(opened) << (opened ? "" : opened.error().text);
        return m_client->client();
    }
    template <class T> T run(ftp::Awaitable<T> work) { return m_client->run(std::move(work)); }
    std::string local(const std::string &name) { return (folder.path() / name).string(); }
    [[nodiscard]] std::string stored(const std::string &name) const
    {
        return servers::readFile(server.root() / name);
    }
    [[nodiscard]] bool noted(const std::string &text) const
    {
        return std::any_of(m_client->notes().begin(), m_client->notes().end(),
                           [&](const std::string &note) { return note.find(text) != note.npos; });
    }

    servers::FaultServer server;
    servers::TemporaryFolder folder;
    std::unique_ptr<TestClient> m_client;

private:
    std::string m_address;
};
