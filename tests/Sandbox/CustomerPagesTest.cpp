#include "SandboxFixture.h"
#include "Support/PlainHttp.h"

namespace corvellan::test {

namespace {

class CustomerPagesTest : public SandboxFixture {
protected:
    PlainAnswer open(const QString& path) const { return plainHttp(box->chatPort(), "GET", path.toLatin1()); }
};

}  // namespace

TEST_F(CustomerPagesTest, everyLinkOfABriefLeadsToItsCustomer) {
    start();
    const auto book = sandbox::CustomerBook::shipped();
    int links = 0;
    for (const auto& customer : book.customers()) {
        for (const auto& link : customer.brief.value(u"links"_s).toObject()) {
            const auto answer = open(QUrl{link.toString()}.path());
            EXPECT_EQ(answer.status, 200) << link.toString().toStdString();
            EXPECT_TRUE(answer.body.contains("<h1>" + customer.name.toHtmlEscaped().toUtf8() + "</h1>"));
            ++links;
        }
    }
    EXPECT_GE(links, 5);
    EXPECT_TRUE(open(u"/crm/contacts/12345/company/55310021"_s).body.contains("<h1>Northwind</h1>"));
    EXPECT_TRUE(open(u"/crm/4711"_s).body.contains("<li>Tom Berg, tom.berg@haldenfreight.example</li>"));
}

TEST_F(CustomerPagesTest, anUnknownCustomerIsNotFound) {
    start();
    for (const auto& path : {u"/crm/1"_s, u"/crm/Halden"_s, u"/crm/company/1"_s, u"/crm/contacts/1/company/1"_s})
        EXPECT_EQ(open(path).status, 404) << path.toStdString();
}

TEST_F(CustomerPagesTest, escapeWhatTheyShow) {
    auto customers = sandbox::CustomerBook::parse(
        R"({"customers":[{"name":"<b>%1 & \"x\"","match":{"source":"crm","id":1,"crmId":1},
            "brief":{"contacts":[{"firstname":"<i>","email":"%2"}]}}]})");
    ASSERT_TRUE(customers) << customers.error().toStdString();
    start({.customers = std::move(*customers)});
    const auto body = open(u"/crm/1"_s).body;
    EXPECT_TRUE(body.contains("<h1>&lt;b&gt;%1 &amp; &quot;x&quot;</h1>")) << body.constData();
    EXPECT_TRUE(body.contains("<li>&lt;i&gt; , %2</li>")) << body.constData();
}

TEST_F(CustomerPagesTest, theExtensionsPageTellsHowToPlayIt) {
    start();
    EXPECT_TRUE(open(u"/extension"_s).body.contains("corvellan-sandbox extension call-start"));
}

}  // namespace corvellan::test
