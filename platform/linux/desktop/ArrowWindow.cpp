#include "platform/linux/desktop/ArrowWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <chrono>

#include "platform/linux/desktop/x11.h"

namespace quillmont {
namespace {

constexpr int kBorder = 1;
constexpr int kShadow = 16;
constexpr double kShadowOpacity = 0.30;
constexpr double kShadowDrop = 3;
constexpr Qt::WindowFlags kFlags =
    Qt::Tool | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint | Qt::WindowStaysOnTopHint;

/// How long the keyboard may belong to nobody while it goes from one of our windows to another.
constexpr std::chrono::milliseconds kFocusSettles{100};

/// On Wayland the compositor chooses a window's place, and an arrow would point at nothing.
bool choosesItsPlace() {
  return !QGuiApplication::platformName().startsWith("wayland");
}

/// Without a compositor, X11 shows black where a window is transparent.
bool isComposited() {
  auto* const connection = qtX11Connection();
  return !connection || screenSelectionIsOwned(connection, "_NET_WM_CM_S");
}

QColor borderColor(const QColor& background) {
  const bool dark = background.lightnessF() < 0.5F;
  return dark ? QColor(255, 255, 255, 48) : QColor(0, 0, 0, 44);
}

/// Wider and wider strokes one over the other: dense at the outline, gone at the end.
void paintShadow(QPainter& painter, const QPainterPath& outline) {
  constexpr int kSteps = 8;
  constexpr double kSum = kSteps * (kSteps + 1) / 2.0;
  painter.save();
  painter.translate(0, kShadowDrop);
  for (int step = 1; step <= kSteps; ++step) {
    const double width = 2.0 * (kShadow - kShadowDrop) * step / kSteps;
    const double opacity = kShadowOpacity * (kSteps + 1 - step) / kSum;
    QPen pen(QColor::fromRgbF(0, 0, 0, static_cast<float>(opacity)), width);
    pen.setJoinStyle(Qt::RoundJoin);
    painter.strokePath(outline, pen);
  }
  painter.restore();
}

/// Where a window of this size has the arrow of its body: the strip up to its edge.
QRectF arrowStrip(QRectF window, const QRectF& body, RectEdge edge) {
  if (edge == RectEdge::minY) window.setBottom(body.top());
  if (edge == RectEdge::maxY) window.setTop(body.bottom());
  if (edge == RectEdge::minX) window.setLeft(body.right());
  if (edge == RectEdge::maxX) window.setRight(body.left());
  return window;
}

/// The window ends at the arrow's tip, where the shadow would be cut off in its middle.
void fadeShadow(QPainter& painter, const QRectF& window, const QRectF& body, RectEdge edge) {
  const auto strip = arrowStrip(window, body, edge);
  const bool fromFarSide = edge == RectEdge::minY || edge == RectEdge::maxX;
  const bool upright = edge == RectEdge::minY || edge == RectEdge::maxY;
  const auto far = upright ? strip.bottomLeft() : strip.topRight();
  QLinearGradient fade(fromFarSide ? far : strip.topLeft(), fromFarSide ? strip.topLeft() : far);
  fade.setColorAt(0, Qt::black);
  fade.setColorAt(1, Qt::transparent);
  painter.save();
  painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
  painter.fillRect(strip, fade);
  painter.restore();
}

/// Equally wide on the arrow's slopes too.
QPainterPath borderInside(const QPainterPath& outline) {
  const QPainterPathStroker stroker(QPen(Qt::black, 2 * kBorder));
  return stroker.createStroke(outline).intersected(outline);
}

QRegion inDevicePixels(const QPainterPath& path, double scale) {
  return QRegion(path.toFillPolygon(QTransform::fromScale(scale, scale)).toPolygon());
}

}  // namespace

/// Lies over the content and takes its square corners away again. All widgets of a window paint
/// into one picture, so what lies below can be cleared; the window's own corner goes under it.
class ArrowWindow::Corners : public QWidget {
 public:
  explicit Corners(ArrowWindow& window) : QWidget(&window), window_(window) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
  }

  void place(const QRect& body) {
    setGeometry(body);
    QRegion corners(rect());
    corners -= rect().adjusted(kBodyRadius, 0, -kBodyRadius, 0);
    corners -= rect().adjusted(0, kBodyRadius, 0, -kBodyRadius);
    setMask(corners);
    raise();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    constexpr double kRadius = kBodyRadius - kBorder;
    QPainterPath outside;
    outside.addRect(rect());
    QPainterPath content;
    content.addRoundedRect(QRectF(rect()).adjusted(kBorder, kBorder, -kBorder, -kBorder), kRadius,
                           kRadius);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(outside.subtracted(content), Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.drawPixmap(-pos(), window_.chrome());
  }

 private:
  ArrowWindow& window_;
};

ArrowWindow::ArrowWindow(QWidget* owner) : QWidget(owner, kFlags), corners_(new Corners(*this)) {
  setAttribute(Qt::WA_TranslucentBackground);
  setAttribute(Qt::WA_AlwaysShowToolTips);
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* focused) {
    if (focused || !isVisible() || tellsOfEveryPress()) return;
    QTimer::singleShot(kFocusSettles, this, [this] { closeWhenProgramIsLeft(); });
  });
}

void ArrowWindow::setContent(QWidget* content) {
  content_ = content;
  content_->setParent(this);
  content_->installEventFilter(this);
  content_->show();
}

void ArrowWindow::setBackground(const QColor& color) {
  background_ = color;
  chrome_ = {};
  update();
}

void ArrowWindow::showAt(const QRect& anchor, RectEdge edge) {
  anchor_ = choosesItsPlace() ? std::optional(anchor) : std::nullopt;
  preferredEdge_ = edge;
  present();
}

void ArrowWindow::showInCorner() {
  anchor_ = std::nullopt;
  present();
}

bool ArrowWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == content_ && event->type() == QEvent::Resize && isVisible()) arrange();
  return false;
}

void ArrowWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
  event->accept();
  onCloseRequest();
}

void ArrowWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  onCloseRequest();
}

void ArrowWindow::paintEvent(QPaintEvent*) {
  QPainter(this).drawPixmap(0, 0, chrome());
}

void ArrowWindow::present() {
  composited_ = isComposited();
  arrange();
  // No control of a panel has the keyboard before Tab gives it one: Space would press it unseen.
  if (!isVisible() && !parentWidget()) setFocus();
  show();
  raise();
  activateWindow();
}

void ArrowWindow::arrange() {
  const QSize size = (content_ ? content_->size() : QSize()) + QSize(2 * kBorder, 2 * kBorder);
  auto* screen = anchor_ ? QGuiApplication::screenAt(anchor_->center()) : nullptr;
  if (!screen) screen = QGuiApplication::primaryScreen();
  if (!screen) return;
  const auto available = screen->availableGeometry();
  placement_ = anchor_ ? placeAtAnchor(*anchor_, size, available, preferredEdge_)
                       : placeInCorner(size, screen->geometry(), available);
  setScreen(screen);
  const auto window = placement_.body + windowMargins(placement_, composited_ ? kShadow : 0);
  // Desktops that tile their windows leave those alone that have one size only.
  setFixedSize(window.size());
  setGeometry(window);
  const auto body = bodyInWindow();
  if (content_) content_->move(body.topLeft() + QPoint(kBorder, kBorder));
  corners_->place(body);
  chrome_ = {};
  update();
  applyShape();
}

/// Clicks on the shadow belong to what lies below it.
void ArrowWindow::applyShape() {
  if (!qtX11Connection()) return;
  const auto region = inDevicePixels(arrowOutline(bodyInWindow(), placement_), devicePixelRatioF());
  setX11WindowShape(winId(), WindowShape::drawn, composited_ ? QRegion() : region);
  setX11WindowShape(winId(), WindowShape::clickable, region);
}

QRect ArrowWindow::bodyInWindow() const {
  return rect() - windowMargins(placement_, composited_ ? kShadow : 0);
}

const QPixmap& ArrowWindow::chrome() {
  const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
  if (chrome_.size() != pixels || chrome_.devicePixelRatioF() != devicePixelRatioF()) {
    chrome_ = QPixmap(pixels);
    chrome_.setDevicePixelRatio(devicePixelRatioF());
    paintChrome(chrome_);
  }
  return chrome_;
}

void ArrowWindow::paintChrome(QPixmap& target) const {
  const auto outline = arrowOutline(bodyInWindow(), placement_);
  // Where nothing blends the window with what lies below it, its edge must not be transparent.
  target.fill(composited_ ? QColor(Qt::transparent) : background_);
  QPainter painter(&target);
  painter.setRenderHint(QPainter::Antialiasing);
  if (composited_) paintShadow(painter, outline);
  if (composited_ && placement_.edge) {
    fadeShadow(painter, rect(), bodyInWindow(), *placement_.edge);
  }
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  painter.fillPath(outline, background_);
  painter.fillPath(borderInside(outline), borderColor(background_));
}

void ArrowWindow::closeWhenProgramIsLeft() {
  if (isVisible() && !QGuiApplication::focusWindow()) onCloseRequest();
}

}  // namespace quillmont
