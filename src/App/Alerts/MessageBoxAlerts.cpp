#include "MessageBoxAlerts.h"

#include <algorithm>
#include <QAbstractButton>
#include <QMessageBox>
#include <QPushButton>

#include "Base/AsyncStream.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

QMessageBox::ButtonRole roleOf(std::size_t index, std::size_t last) {
    // The platform's style decides by the role where a button stands.
    if (index == 0)
        return QMessageBox::AcceptRole;
    return index == last ? QMessageBox::RejectRole : QMessageBox::ActionRole;
}

/// \param buttons receives the buttons in the order of the alert's titles.
std::unique_ptr<QMessageBox> makeBox(const Alert& alert, std::vector<QAbstractButton*>& buttons) {
    auto box = std::make_unique<QMessageBox>();
    box->setWindowTitle(u"Corvellan Bram"_s);
    box->setIcon(QMessageBox::Warning);
    // A text that looks like markup is text all the same.
    box->setTextFormat(Qt::PlainText);
    box->setText(alert.messageText);
    box->setInformativeText(alert.informativeText);
    box->setAccessibleName(alert.messageText);
    box->setAccessibleDescription(alert.informativeText);
    // The panel stays above other windows, and must not cover a question that blocks it.
    box->setWindowFlag(Qt::WindowStaysOnTopHint);
    box->setWindowModality(Qt::ApplicationModal);
    const auto last = alert.buttonTitles.size() - 1;
    for (QString title : alert.buttonTitles) {
        // A single one would mark a letter.
        title.replace(u"&"_s, u"&&"_s);
        buttons.push_back(box->addButton(title, roleOf(buttons.size(), last)));
    }
    box->setDefaultButton(qobject_cast<QPushButton*>(buttons.front()));
    box->setEscapeButton(buttons.back());
    return box;
}

}  // namespace

MessageBoxAlerts::MessageBoxAlerts() = default;
MessageBoxAlerts::~MessageBoxAlerts() = default;

QCoro::Task<std::size_t> MessageBoxAlerts::runModal(Alert alert) {
    Q_ASSERT(!alert.buttonTitles.empty());
    const auto last = alert.buttonTitles.size() - 1;
    auto [stream, producer] = AsyncStream<std::size_t>::make();
    std::vector<QAbstractButton*> buttons;
    auto* const box = m_open.emplace_back(makeBox(alert, buttons)).get();
    QObject::connect(box, &QDialog::finished, box, [this, box, buttons, producer] {
        const auto pressed = std::ranges::find(buttons, box->clickedButton());
        if (pressed != buttons.end())
            producer.push(static_cast<std::size_t>(pressed - buttons.begin()));
        producer.finish();
        // Not here, in its own signal.
        const auto own = std::ranges::find(m_open, box, &std::unique_ptr<QMessageBox>::get);
        own->release()->deleteLater();
        m_open.erase(own);
    });
    // When this object goes first, nothing is finished any more.
    QObject::connect(box, &QObject::destroyed, [producer] { producer.finish(); });
    box->show();
    box->activateWindow();

    // Nothing of this object is used after the wait.
    const auto answers = stream;
    const auto pressed = co_await answers.next();
    co_return pressed && pressed->has_value() ? **pressed : last;
}

}  // namespace corvellan
