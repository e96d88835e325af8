// Variables: a text typed in a dialog (a column name, a name in parentheses,
// or an expression for the sheet's evaluator) turned into a column of doubles
// or fixed-width characters held in a VariableBinding, with the select
// expression applied; the checks the dialogs run before they close; and the
// small text and memory services that everything built on columns needs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "frame/host_records.h"

namespace zv {

// Resolves `expression` to a column. With a negative slot only type, width
// and rows are answered and `data` is not touched; otherwise the old block
// in *data is freed and a new one of the state's rowCount rows is filled.
int32_t ResolveVariable(std::string_view expression, Handle* data, int32_t slot, char* type,
                        int32_t* width, int32_t* rows);

// Loads a binding from its expression. slot < 0 encodes -1 - slot and loads
// without applying the select (how the select column itself is loaded).
int32_t LoadVariable(int32_t slot, VariableBinding* binding);

// Loads the Host's text and number bindings and the select, in that order.
int32_t LoadSpecialVariables(int32_t slot);

// Dialog checks; `position` is the field number shown in messages, 0 silent.
int32_t CheckVariable(int32_t position, std::string_view expression, bool allowEmpty,
                      bool allowText);
int32_t CheckVariableList(int32_t position, std::string_view lines, bool allowEmpty, bool allowText,
                          int32_t maximum);
void CountVariableLines(int32_t slot, std::string_view lines);
// The non-empty lines of a line list, trimmed (the rule CheckVariableList and
// CountVariableLines count by).
int32_t SplitVariableLines(std::string_view lines, std::string* out, int32_t capacity);

int32_t ColumnIndexOf(std::string_view name);

std::string TrimBlanks(std::string_view text);
void TrimBlanksInPlace(char* buffer);
std::string StripBlanksAndQuotes(std::string_view text);
void StripBlanksAndQuotesInPlace(char* buffer);
int32_t IsBlankText(std::string_view text);
int32_t IsValidColumnName(std::string_view name);
int32_t EditHasText(const WinDialog& dialog, int32_t control);

// A movable block of `bytes`, or 0 after ShowError 1001.
Handle AllocGlobal(uint32_t bytes);
// The one guard of a block's size: the bytes of `count` items of `size`
// bytes, at least 1, when a block can hold them (below 4 GiB, the product not
// overflowing); 0 when it cannot.
uint32_t BlockBytes(uint64_t count, uint64_t size);
// AllocGlobal of BlockBytes(count, size); 0 after ShowError 1001, also when
// the size is beyond what a block can hold.
Handle AllocItems(uint64_t count, uint64_t size);
// Frees *block if set and clears it.
void FreeGlobal(Handle* block);

// The expression text of a binding, as the Host stored it.
inline std::string_view ExpressionOf(const VariableBinding& binding) {
  return CountedText(binding.expression);
}

}  // namespace zv
