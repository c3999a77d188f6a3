#include "Platform/X11/XSettings.h"

#include "Platform/X11/PropertyReply.h"

namespace quillon::x11 {

namespace {

/// Reads the fields of an XSETTINGS property. After a field that lies beyond the end nothing is read any more.
class Reader {
public:
    explicit Reader(std::string_view bytes) : rest(bytes) {}

    void setBigEndian(bool value) { isBigEndian = value; }
    [[nodiscard]] bool isGood() const { return good; }

    std::uint32_t number(std::size_t size) {
        std::uint32_t value = 0;
        const auto field = text(size);
        for (std::size_t index = 0; index < field.size(); ++index) {
            const auto byte = static_cast<unsigned char>(field[isBigEndian ? index : field.size() - 1 - index]);
            value = value << 8 | byte;
        }
        return value;
    }

    std::string_view text(std::size_t size) {
        good = good && size <= rest.size();
        if (!good) {
            return {};
        }
        const auto field = rest.substr(0, size);
        rest.remove_prefix(size);
        return field;
    }

    /// Filled up to a multiple of four bytes.
    std::string_view paddedText(std::size_t size) {
        const auto field = text(size);
        text((4 - size % 4) % 4);
        return field;
    }

private:
    std::string_view rest;
    bool isBigEndian = false;
    bool good = true;
};

enum SettingType : std::uint32_t { integerSetting = 0, textSetting = 1, colourSetting = 2 };

} // namespace

XSettings parseXSettings(std::string_view bytes) {
    constexpr std::uint32_t bigEndian = 1;
    constexpr std::size_t colourSize = 8;
    XSettings settings;
    Reader reader(bytes);
    reader.setBigEndian(reader.number(1) == bigEndian);
    reader.text(3);
    reader.number(4); // the serial number of the whole
    for (auto left = reader.number(4); left > 0 && reader.isGood(); --left) {
        const auto type = reader.number(1);
        reader.text(1);
        const auto name = reader.paddedText(reader.number(2));
        reader.number(4); // the serial number of the last change
        if (type == integerSetting) {
            const auto value = static_cast<std::int32_t>(reader.number(4));
            if (reader.isGood()) {
                settings.numbers.emplace(name, value);
            }
        } else if (type == textSetting) {
            const auto value = reader.paddedText(reader.number(4));
            if (reader.isGood()) {
                settings.texts.emplace(name, value);
            }
        } else if (type == colourSetting) {
            reader.text(colourSize);
        } else {
            break;
        }
    }
    return settings;
}

xcb_window_t xSettingsManager(Connection& connection) {
    return connection.selectionOwner(connection.atom(connection.selectionName("_XSETTINGS")));
}

XSettings readXSettings(Connection& connection) {
    constexpr std::uint32_t longestProperty = 65536;
    const auto manager = xSettingsManager(connection);
    if (manager == XCB_WINDOW_NONE) {
        return {};
    }
    PropertyReply property(connection, manager, connection.atom("_XSETTINGS_SETTINGS"), longestProperty);
    property.wait();
    return parseXSettings(property.bytes().value_or(std::string_view()));
}

} // namespace quillon::x11
