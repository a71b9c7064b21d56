// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_text.h"

#include "veltra/qt/qt_types.h"

#include <QApplication>
#include <QFont>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <cmath>

namespace veltra {

namespace {

constexpr int kLayoutSize = 64;  // pixels
constexpr std::size_t kMostMeasured = 1000;

QFont layoutFont(const Font& font, bool isSmooth) {
    QFont result(font.name.empty() ? QApplication::font().family() : toQt(font.name));
    result.setPixelSize(kLayoutSize);
    result.setHintingPreference(QFont::PreferNoHinting);
    result.setStyleStrategy(isSmooth ? QFont::PreferAntialias : QFont::NoAntialias);
    switch (font.weight) {
        case FontWeight::Regular:
            break;
        case FontWeight::Medium:
            result.setWeight(QFont::Medium);
            break;
        case FontWeight::SemiBold:
            result.setWeight(QFont::DemiBold);
            break;
        case FontWeight::Bold:
            result.setWeight(QFont::Bold);
            break;
    }
    if (font.hasEqualDigits) result.setKerning(false);
    return result;
}

bool isDigit(QChar character) {
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

// The width of the widest digit; 0 when all are of one width and the text can be laid out as it is.
double digitCell(const QFontMetricsF& metrics) {
    double least = metrics.horizontalAdvance(QLatin1Char('0'));
    double most = least;
    for (char digit = '1'; digit <= '9'; ++digit) {
        const double width = metrics.horizontalAdvance(QLatin1Char(digit));
        least = std::min(least, width);
        most = std::max(most, width);
    }
    return most - least > 0.01 * most ? most : 0.0;
}

// A piece of a line and how much room it takes: all of it, or one digit in its cell.
struct Piece {
    QString string;
    double width;  // of its room, at the size of the layout
    double shift;  // of the piece in its room
};

std::vector<Piece> pieces(const StyledText& text, const QFontMetricsF& metrics) {
    const QString line = toQt(text.string);
    const double cell = text.font.hasEqualDigits ? digitCell(metrics) : 0.0;
    if (cell == 0.0) return {{line, metrics.horizontalAdvance(line), 0.0}};
    std::vector<Piece> result;
    for (qsizetype at = 0; at < line.size();) {
        qsizetype end = at + 1;
        if (!isDigit(line[at])) {
            while (end < line.size() && !isDigit(line[end]))
                ++end;
        }
        const QString string = line.mid(at, end - at);
        const double width = metrics.horizontalAdvance(string);
        const bool isCell = isDigit(line[at]);
        result.push_back({string, isCell ? cell : width, isCell ? (cell - width) / 2 : 0.0});
        at = end;
    }
    return result;
}

double totalWidth(const std::vector<Piece>& all) {
    double width = 0.0;
    for (const Piece& piece : all)
        width += piece.width;
    return width;
}

double baseline(const QPainter& painter, const QFontMetricsF& metrics, double scale,
                const Rect& rect, TextPlacement placement) {
    const double middle = rect.center().y;
    switch (placement) {
        case TextPlacement::Center:
            break;
        case TextPlacement::Top:
            return rect.minY() + metrics.ascent() * scale;
        case TextPlacement::Capitals: {
            const QTransform toDevice = painter.deviceTransform();
            QPointF foot = toDevice.map(QPointF(0.0, middle + metrics.capHeight() / 2 * scale));
            foot.setY(std::round(foot.y()));
            return toDevice.inverted().map(foot).y();
        }
    }
    return middle + (metrics.ascent() - metrics.descent()) / 2 * scale;
}

}  // namespace

bool QtTextSizes::hasFamily(const std::string& name) {
    const auto found = m_families.find(name);
    if (found != m_families.end()) return found->second;
    return m_families.emplace(name, QFontDatabase::hasFamily(toQt(name))).first->second;
}

void QtTextSizes::forget() {
    m_families.clear();
    m_measured.clear();
}

Size QtTextSizes::sizeOf(const StyledText& text) {
    const std::string family =
        text.font.name.empty() ? QApplication::font().family().toStdString() : text.font.name;
    const char attributes[] = {static_cast<char>(text.font.weight),
                               static_cast<char>(text.font.hasEqualDigits), '\0'};
    const std::string key = family + '\n' + std::string(attributes, 2) + text.string;
    auto found = m_measured.find(key);
    if (found == m_measured.end()) {
        if (m_measured.size() >= kMostMeasured) m_measured.clear();
        const QFontMetricsF metrics(layoutFont(text.font, true));
        const Size size{static_cast<float>(totalWidth(pieces(text, metrics))),
                        static_cast<float>(metrics.height())};
        found = m_measured.emplace(key, size).first;
    }
    const float scale = text.font.size / kLayoutSize;
    return {found->second.width * scale, found->second.height * scale};
}

void drawQtText(QPainter& painter, const StyledText& text, const Rect& rect,
                TextPlacement placement, bool isSmooth) {
    const double scale = static_cast<double>(text.font.size) / kLayoutSize;
    if (!(scale > 0.0)) return;
    const QFont font = layoutFont(text.font, isSmooth);
    const QFontMetricsF metrics(font);
    const std::vector<Piece> all = pieces(text, metrics);
    const double width = totalWidth(all) * scale;
    const double room = static_cast<double>(rect.size.width) - width;
    double left = rect.minX();
    if (text.alignment == TextAlignment::Center) left += room / 2;
    if (text.alignment == TextAlignment::Right) left += room;
    const double line = baseline(painter, metrics, scale, rect, placement);

    painter.save();
    if (room < 0.0) {
        const double height = metrics.height() * scale;
        painter.setClipRect(QRectF(rect.minX(), line - height, rect.size.width, 2 * height),
                            Qt::IntersectClip);
    }
    painter.translate(left, line);
    painter.scale(scale, scale);
    painter.setFont(font);
    painter.setPen(toQt(text.color));
    double at = 0.0;
    for (const Piece& piece : all) {
        painter.drawText(QPointF(at + piece.shift, 0.0), piece.string);
        at += piece.width;
    }
    painter.restore();
}

}  // namespace veltra
