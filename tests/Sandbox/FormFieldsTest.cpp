#include "Sandbox/FormFields.h"

#include <gtest/gtest.h>

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using sandbox::FormFields;
using sandbox::parseForm;

}  // namespace

TEST(FormFieldsTest, decodesNamesAndValues) {
    EXPECT_EQ(parseForm("a=1&b+c=d+e%2B%26%3d&u=%C3%BC&empty=&bare&&eq=x=y"), (FormFields{{u"a"_s, u"1"_s},
                                                                                          {u"b c"_s, u"d e+&="_s},
                                                                                          {u"u"_s, u"ü"_s},
                                                                                          {u"empty"_s, {}},
                                                                                          {u"bare"_s, {}},
                                                                                          {u"eq"_s, u"x=y"_s}}));
    EXPECT_EQ(parseForm(""), FormFields{});
}

TEST(FormFieldsTest, refusesWhatIsAmbiguousOrBroken) {
    for (const auto* const bytes : {"a=1&a=1", "a&%61", "a=%", "a=%4", "a=%zz", "a=%FF", "\xFF=1", "%%=1"})
        EXPECT_EQ(parseForm(bytes), std::nullopt) << bytes;
}

TEST(FormFieldsTest, refusesWhatIsTooLong) {
    EXPECT_TRUE(parseForm("a=" + QByteArray(sandbox::longestForm - 2, 'x')));
    EXPECT_FALSE(parseForm("a=" + QByteArray(sandbox::longestForm - 1, 'x')));
}

}  // namespace corvellan::test
