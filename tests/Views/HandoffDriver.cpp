#include "HandoffDriver.h"

#include "Support/TestLoop.h"

namespace corvellan::test {

HandoffDriver::HandoffDriver() {
    make({});
}

HandoffDriver::~HandoffDriver() = default;

void HandoffDriver::make(HandoffResponse handoff, bool isClosable) {
    m_closings = 0;
    m_browser.pages.clear();
    m_browser.contacts.clear();
    m_browser.failure.reset();
    std::optional<HandoffWindowView::Close> onClose;
    if (isClosable)
        onClose = [this] { ++m_closings; };
    auto next = std::make_unique<HandoffWindowView>(
        std::move(handoff), m_browser,
        CrmAddress{.url = QStringLiteral("https://crm.example"), .portal = QStringLiteral("42")}, std::move(onClose));
    std::swap(m_view, next);
    Q_EMIT madeAnew();
}

void HandoffDriver::setNote(const QString& note) {
    make({.handoffNote = note});
}

void HandoffDriver::setWhole(const QString& note) {
    make({.handoffNote = note,
          .meta = HandoffMeta{
              .hubspotCompanyId = QStringLiteral("77"), .deviceCount = 12, .callCount = 3, .engagementEmails = 1}});
}

void HandoffDriver::setUnclosable(const QString& note) {
    make({.handoffNote = note}, false);
}

void HandoffDriver::refuseToOpen(const QString& sentence) {
    m_browser.failure = TransportError{sentence};
}

QStringList HandoffDriver::opened() {
    settle();
    QStringList addresses;
    for (const QUrl& page : m_browser.pages)
        addresses.append(page.toString());
    for (const QUrl& contact : m_browser.contacts)
        addresses.append(contact.toString());
    return addresses;
}

}  // namespace corvellan::test
