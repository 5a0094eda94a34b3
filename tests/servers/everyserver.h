// Base of test suites that run against each of the real servers:
//
//   class Transfers : public servers::EveryServer {};
//   TEST_P(Transfers, GetsAFile) { servers::Server server(GetParam()); .. }
//   INSTANTIATE_TEST_SUITE_P(Servers, Transfers, testing::ValuesIn(servers::allKinds()),
//                            servers::parameterName);
#pragma once

#include "servers/servers.h"

#include <gtest/gtest.h>
#include <ostream>

namespace servers {

class EveryServer : public testing::TestWithParam<Kind> {
protected:
    void SetUp() override
    {
        std::string why;
        if (!canRun(GetParam(), &why)) {
            GTEST_SKIP() << why;
        }
    }
};

inline void PrintTo(Kind kind, std::ostream *out) { *out << name(kind); }

inline std::string parameterName(const testing::TestParamInfo<Kind> &info)
{
    return name(info.param);
}

} // namespace servers
