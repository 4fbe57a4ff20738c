#pragma once

#include "Platform/Accessibility.h"

namespace vesk {

/// An element that knows nothing: what the elements of this bus build upon.
class AbsentElement : public AccessibilityElement {
public:
    Task<std::optional<QString>> string(QString) override { co_return std::nullopt; }
    TextUnit textUnit() const override { return TextUnit::codePoint; }
    Task<std::optional<qint64>> integer(QString) override { co_return std::nullopt; }
    Task<std::optional<TextRange>> range(QString) override { co_return std::nullopt; }
    Task<std::optional<QString>> text(TextRange) override { co_return std::nullopt; }
    Task<std::shared_ptr<AccessibilityElement>> element(QString) override
    {
        co_return std::shared_ptr<AccessibilityElement>();
    }
    Task<bool> setAttribute(QString, bool) override { co_return false; }
};

} // namespace vesk
