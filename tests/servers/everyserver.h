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

/// @tparam Base  what else the tests need; a testing::Test
template <class Base>
class EveryServerWith : public Base, public testing::WithParamInterface<Kind> {
protected:
    void SetUp() override
    {
        Base::SetUp();
        std::string why;
        if (!canRun(this->GetParam(), &why)) {
            // The one reason allowed: this account cannot run that server, which is reported.
            GTEST_SKIP() << why;
        }
    }
};

class EveryServer : public EveryServerWith<testing::Test> { };

inline void PrintTo(Kind kind, std::ostream *out) { *out << name(kind); }

inline std::string parameterName(const testing::TestParamInfo<Kind> &info)
{
    return name(info.param);
}

} // namespace servers
