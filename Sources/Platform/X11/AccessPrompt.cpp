#include "Platform/X11/AccessPrompt.h"

#include "Platform/X11/AccessibilityStatus.h"
#include "Platform/X11/Controls.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quillon::x11 {

namespace {

// In points.
constexpr int textWidth = 440;
constexpr int margin = 20;
constexpr int spacing = 10;

} // namespace

AccessPrompt::AccessPrompt(AccessibilityStatus& status)
    : status(status), text(new TextLabel), note(new TextLabel(Label{{}, TextStyle::caption})),
      closeButton(new PushButton(Button{"Chiudi", [this] { close(); }})),
      allowButton(new PushButton(Button{"Consenti accesso", [this] { allow(); }})),
      statusChange(status.observe([this] { close(); })) {
    setWindowTitle("Quillon");
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(closeButton);
    buttons->addWidget(allowButton);
    auto* const rows = new QVBoxLayout(this);
    rows->setContentsMargins(margin, margin, margin, margin);
    rows->setSpacing(spacing);
    // The desktop's font, which comes later, needs another size.
    rows->setSizeConstraint(QLayout::SetFixedSize);
    text->setFixedWidth(textWidth);
    note->setFixedWidth(textWidth);
    rows->addWidget(text);
    rows->addWidget(note);
    rows->addLayout(buttons);
    if (status.isInstalled()) {
        offerToSwitchOn();
    } else {
        tellHowToGetIt();
    }
}

AccessPrompt::~AccessPrompt() = default;

void AccessPrompt::offerToSwitchOn() {
    closeButton->setText("Non ora");
    text->setText("L’accessibilità di questo desktop è disattivata. A Quillon serve per far scorrere le finestre "
                  "fissate senza portarle in primo piano; il resto funziona anche senza.");
    note->setText("Puoi attivarla più tardi in Impostazioni. I programmi già aperti potrebbero accorgersene solo al "
                  "prossimo avvio.");
}

void AccessPrompt::tellHowToGetIt() {
    text->setText("L’accessibilità non è installata (pacchetto at-spi2-core).");
    note->hide();
    allowButton->hide();
}

/// A success closes the window, as any other change of the status does.
void AccessPrompt::allow() {
    if (!status.switchOn()) {
        note->setText("Non è stato possibile attivarla: riprova più tardi in Impostazioni.");
    }
}

} // namespace quillon::x11
