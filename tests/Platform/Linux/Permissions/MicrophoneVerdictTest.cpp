#include "Platform/Linux/Permissions/MicrophoneVerdict.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace corvellan {
namespace {

PulseDefaultSource source(bool isMonitor) {
    return {.index = 0, .name = u"mic"_s, .driver = {}, .isMonitor = isMonitor, .properties = {}};
}

TEST(MicrophoneVerdictTest, aRealSourceIsAuthorizedAndAMonitorIsNone) {
    for (const auto around : {Confinement::none, Confinement::sandboxed}) {
        EXPECT_EQ(microphoneVerdict(source(false), around), CaptureAuthorization::authorized);
        EXPECT_EQ(microphoneVerdict(source(true), around), CaptureAuthorization::denied);
    }
}

TEST(MicrophoneVerdictTest, noSourceIsDenied) {
    EXPECT_EQ(microphoneVerdict(std::unexpected(PulseLookUpFailure::noSource), Confinement::none),
              CaptureAuthorization::denied);
}

TEST(MicrophoneVerdictTest, aRefusingServerIsRestricted) {
    EXPECT_EQ(microphoneVerdict(std::unexpected(PulseLookUpFailure::refused), Confinement::none),
              CaptureAuthorization::restricted);
}

TEST(MicrophoneVerdictTest, noServerIsNotDeterminedButInASandboxRestricted) {
    EXPECT_EQ(microphoneVerdict(std::unexpected(PulseLookUpFailure::noServer), Confinement::none),
              CaptureAuthorization::notDetermined);
    EXPECT_EQ(microphoneVerdict(std::unexpected(PulseLookUpFailure::noServer), Confinement::sandboxed),
              CaptureAuthorization::restricted);
}

}  // namespace
}  // namespace corvellan
