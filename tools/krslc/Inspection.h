#pragma once
#include "Warnings.h"

#include <common/FunctionScanner.h>

#include <string>
#include <string_view>
#include <utility>

/// A function under inspection, and where its warnings go.
struct Inspection
{
    const krTools::FunctionScanner& scanner;
    const krTools::ScannedFunction& function;
    const WarningOptions& warnings;
    krTools::Findings& findings;

    void warn(Warning warning, std::size_t position, std::string text) const
    {
        warnings.warn(findings, warning, position, std::move(text));
    }
    void warn(Warning warning, const krTools::ScannedToken& token, std::string text) const
    {
        warn(warning, token.begin, std::move(text));
    }
    [[nodiscard]] const krTools::ScannedToken& token(std::size_t i) const { return function.tokens[i]; }
    [[nodiscard]] krShadingDag::TokenType typeAt(std::size_t i) const
    {
        return i < function.tokens.size() ? token(i).type : krShadingDag::TokenType::EndOfStream;
    }
    [[nodiscard]] std::string_view text(std::size_t i) const { return scanner.text(token(i)); }
    [[nodiscard]] std::string_view resultWord() const
    {
        return function.resultWord ? text(*function.resultWord) : std::string_view();
    }
};

/// Warns of comments and strings that hold more, or less, than they seem to.
void lintText(const Inspection& in);

/// Warns of arguments.
void lintHeader(const Inspection& in);

/// Warns of statements.
void lintBody(const Inspection& in);

/// Warns that a declared name is one of the programs' own.
/// @param name  its place in the function's tokens
void warnReserved(const Inspection& in, std::size_t name);
