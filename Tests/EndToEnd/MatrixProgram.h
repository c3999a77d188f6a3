#pragma once

#include "Interaction.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::e2e {

/// A column of the matrix.
enum class MatrixAction {
    click,
    doubleClick,
    rightClick,
    dragSelect,
    wheel,
    horizontalWheel,
    accessibilityScroll,
};

/// A row of the matrix: a program, what the user does in it, and how to see that the program did what it does for its
/// own user.
class MatrixProgram {
public:
    virtual ~MatrixProgram() = default;

    [[nodiscard]] virtual std::string name() const = 0;
    /// It takes so long to install and to start that only `scripts/matrix` tries it.
    [[nodiscard]] virtual bool isLarge() const { return false; }
    /// What it is started with; empty when it is not installed.
    [[nodiscard]] virtual Command command(const Desktop& desktop) = 0;
    /// Whether it can be used, once its window lies in its place.
    [[nodiscard]] virtual bool isReady(Interaction& user) = 0;
    [[nodiscard]] virtual std::string version(const Desktop& desktop) const = 0;
    /// Why an action cannot work, in a few words; none when it has to.
    [[nodiscard]] virtual std::optional<std::string> obstacle(MatrixAction /*action*/) const { return std::nullopt; }

    /// Each performs its action and tells whether the program did what it should.
    [[nodiscard]] virtual bool click(Interaction& user) = 0;
    [[nodiscard]] virtual bool doubleClick(Interaction& user) = 0;
    [[nodiscard]] virtual bool rightClick(Interaction& user) = 0;
    [[nodiscard]] virtual bool dragSelect(Interaction& user) = 0;
    [[nodiscard]] virtual bool wheel(Interaction& user) = 0;
    [[nodiscard]] virtual bool horizontalWheel(Interaction& user) = 0;
};

inline void PrintTo(const std::shared_ptr<MatrixProgram>& program, std::ostream* stream) {
    *stream << program->name();
}

[[nodiscard]] std::vector<std::shared_ptr<MatrixProgram>> matrixPrograms();

} // namespace quillon::e2e
