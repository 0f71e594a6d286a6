#pragma once

#include "SandboxFixture.h"

namespace corvellan::test {

/// A sandbox where somebody has signed in, without the detour over the page and the browser.
class SignedInFixture : public SandboxFixture {
protected:
    [[nodiscard]] QString tokenFor(const QString& user = u"anna@fernhill.example"_s) {
        auto& accounts = box->accounts();
        const QByteArray verifier{"dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"};
        const sandbox::SignInRequest request{.clientId = u"corvellan-tui"_s,
                                             .redirectUri = u"http://127.0.0.1:9876/callback"_s,
                                             .codeChallenge = u"E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM"_s,
                                             .scope = u"openid"_s,
                                             .state = {}};
        const auto tokens =
            accounts.redeemCode(accounts.issueCode(request, user), request.clientId, request.redirectUri, verifier);
        EXPECT_TRUE(tokens);
        return tokens ? tokens->accessToken : QString{};
    }
};

}  // namespace corvellan::test
