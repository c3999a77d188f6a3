#include "Platform/X11/Clock.h"

#include <QDateTime>
#include <QLocale>

namespace quillon::x11 {

namespace {

class QtDateFormatter final : public DateFormatter {
public:
    /// The two pattern languages differ in the field of the milliseconds only, among those that the port has.
    explicit QtDateFormatter(const std::string& dateFormat)
        : format(QString::fromStdString(dateFormat).replace("SSS", "zzz")) {}

    [[nodiscard]] std::string string(WallTime time) const override {
        const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time.time_since_epoch());
        return QLocale::c().toString(QDateTime::fromMSecsSinceEpoch(milliseconds.count()), format).toStdString();
    }

private:
    QString format;
};

} // namespace

WallTime X11Clock::now() const {
    return std::chrono::system_clock::now();
}

std::unique_ptr<DateFormatter> X11Clock::makeDateFormatter(const std::string& dateFormat) const {
    return std::make_unique<QtDateFormatter>(dateFormat);
}

} // namespace quillon::x11
