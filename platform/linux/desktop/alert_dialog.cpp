#include "platform/linux/desktop/alert_dialog.h"

#include <QApplication>
#include <QCursor>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <optional>
#include <vector>

namespace quillmont {
namespace {

constexpr char kCancelTitle[] = "取消";
constexpr int kMargin = 20;
constexpr int kSpacing = 12;
constexpr int kIconSpacing = 16;
constexpr int kMessageSize = 14, kInformationSize = 12;  ///< of their letters
constexpr int kIconSize = 48;
constexpr int kTextWidth = 360;
constexpr int kButtonWidth = 92;

QStyle::StandardPixmap iconOf(AlertStyle style) {
  if (style == AlertStyle::informational) return QStyle::SP_MessageBoxInformation;
  if (style == AlertStyle::critical) return QStyle::SP_MessageBoxCritical;
  return QStyle::SP_MessageBoxWarning;
}

QLabel* makeText(const std::string& text, int pixelSize, QFont::Weight weight) {
  auto* const label = new QLabel(QString::fromStdString(text));
  QFont font = label->font();
  font.setPixelSize(pixelSize);
  font.setWeight(weight);
  label->setFont(font);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setFixedWidth(kTextWidth);
  return label;
}

/// A dialog that remembers which of its buttons was pressed, and takes its being closed for an
/// answer.
class AlertDialog : public QDialog {
 public:
  AlertDialog(const Alert& alert, const QPalette& palette)
      : QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                             Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint) {
    setPalette(palette);
    setWindowModality(Qt::ApplicationModal);
    setWindowTitle(QApplication::applicationName());
    setAccessibleName(QString::fromStdString(alert.messageText));
    setAccessibleDescription(QString::fromStdString(alert.informativeText));
    auto* const rows = new QVBoxLayout(this);
    rows->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    rows->setSpacing(kMargin);
    rows->setSizeConstraint(QLayout::SetFixedSize);
    rows->addLayout(makeTexts(alert));
    rows->addLayout(makeButtons(alert.buttonTitles));
  }

  /// None: it has gone without one.
  std::optional<std::size_t> answer() const { return answer_; }

  /// Escape and the close button come here.
  void reject() override { answerWith(escapeAnswer_); }

 private:
  QLayout* makeTexts(const Alert& alert) {
    auto* const icon = new QLabel;
    icon->setPixmap(style()->standardIcon(iconOf(alert.style)).pixmap(kIconSize));
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(kSpacing / 2);
    texts->addWidget(makeText(alert.messageText, kMessageSize, QFont::Bold));
    texts->addWidget(makeText(alert.informativeText, kInformationSize, QFont::Normal));
    texts->addStretch();
    auto* const row = new QHBoxLayout;
    row->setSpacing(kIconSpacing);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addLayout(texts);
    return row;
  }

  QLayout* makeButtons(const std::vector<std::string>& titles) {
    auto* const row = new QHBoxLayout;
    row->setSpacing(kSpacing);
    row->addStretch();
    for (std::size_t index = 0; index < titles.size(); ++index) {
      auto* const button = new QPushButton(QString::fromStdString(titles[index]), this);
      button->setMinimumWidth(kButtonWidth);
      // Return presses the button with the focus, and the first one as long as none has it.
      button->setDefault(index == 0);
      connect(button, &QPushButton::clicked, this, [this, index] { answerWith(index); });
      row->addWidget(button);
    }
    const auto cancel = std::find(titles.begin(), titles.end(), kCancelTitle);
    if (cancel != titles.end()) {
      escapeAnswer_ = static_cast<std::size_t>(cancel - titles.begin());
    } else if (!titles.empty()) {
      escapeAnswer_ = titles.size() - 1;
    }
    return row;
  }

  void answerWith(std::optional<std::size_t> answer) {
    answer_ = answer;
    done(Accepted);
  }

  std::optional<std::size_t> answer_, escapeAnswer_;
};

void centre(QWidget& window) {
  const auto* screen = QGuiApplication::screenAt(QCursor::pos());
  if (!screen) screen = QGuiApplication::primaryScreen();
  if (!screen) return;
  window.adjustSize();
  QRect frame = window.frameGeometry();
  frame.moveCenter(screen->availableGeometry().center());
  window.move(frame.topLeft());
}

}  // namespace

std::int64_t runAlertDialog(const Alert& alert, const QPalette& palette) {
  AlertDialog dialog(alert, palette);
  centre(dialog);
  dialog.show();
  dialog.raise();
  dialog.activateWindow();
  dialog.exec();
  if (!dialog.answer()) return kAlertAborted;
  return kAlertFirstButtonReturn + static_cast<std::int64_t>(*dialog.answer());
}

}  // namespace quillmont
