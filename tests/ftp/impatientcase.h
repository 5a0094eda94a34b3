// A client that soon takes a silent server for lost, and moves single files.
#pragma once

#include "ftp/faultcase.h"

#include <string>

class ImpatientCase : public FaultCase {
protected:
    /// A client that is still to open its session and trusts no certificate.
    TestClient &login(ftp::Encryption encryption = ftp::Encryption::Never, int sessions = 1)
    {
        TestClient &client = prepared(encryption, sessions);
        client.login().timeout = std::chrono::milliseconds(700);
        client.trust(ftp::Trust::Reject);
        return client;
    }
    TestClient &connected(ftp::Encryption encryption = ftp::Encryption::Never, int sessions = 1)
    {
        TestClient &client = login(encryption, sessions);
        client.trust(ftp::Trust::Once);
        const ftp::Status opened = client.open();
        EXPECT_TRUE(opened) << (opened ? "" : opened.error().text);
        return client;
    }
    ftp::Result<std::int64_t> get(const std::string &name, std::int64_t offset = 0)
    {
        return run(m_client->client().get(name, local(name), offset, ftp::Type::Binary));
    }
    ftp::Result<std::int64_t> put(const std::string &name, std::int64_t offset = 0)
    {
        return run(m_client->client().put(local(name), name, offset, ftp::Type::Binary));
    }
};
