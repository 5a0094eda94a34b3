// Listings that tell of a file what is not so, or cannot be all true.
#include "ftp/tree.h"

#include "ftp/faultcase.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace fs = std::filesystem;
using ftp::ErrorKind;
using ftp::Type;

namespace {

class OddListings : public FaultCase {
protected:
    void store(const std::string &name, std::size_t size)
    {
        servers::writeRandomFile(server.root() / "web" / name, size);
    }
    ftp::Status fetch()
    {
        return run(ftp::getTree(m_client->client(), "/web", local("web"), Type::Binary));
    }
    std::string differs(const std::string &name)
    {
        return servers::difference(local("web/" + name), server.root() / "web" / name);
    }
};

} // namespace

TEST_F(OddListings, WhatMachinesReadIsEnoughWhereNobodyReadsTheOther)
{
    store("unten/f", 3000);
    server.fault.listing = "<html>Heute keine Liste</html>\r\n";
    connected();
    const auto got = fetch();
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_EQ(differs("unten/f"), "");
}
