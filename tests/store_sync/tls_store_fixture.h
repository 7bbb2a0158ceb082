#pragma once

#include "../store/store_fixture.h"
#include "https_test_server.h"

#include <optional>

namespace velino::test {

// A store test with a server identity and its authority, made by openssl once per run.
class TlsStoreTest : public StoreTest {
protected:
    static void SetUpTestSuite() {
        if (!identity_)
            identity_ = TestTlsIdentity::generate(&identityError_);
    }

    void SetUp() override {
        StoreTest::SetUp();
        ASSERT_TRUE(identity_.has_value()) << identityError_.toStdString();
    }

    static inline std::optional<TestTlsIdentity> identity_;
    static inline QString identityError_;
};

} // namespace velino::test
