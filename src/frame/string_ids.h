// The numbers of the string-table entries that the module's shared code and
// several families read: messages, the failure texts of the panes, and the
// labels every report uses. A family's own texts have their names in its
// subsystem.
#pragma once

#include <cstdint>

namespace zv {

// Messages.
inline constexpr int32_t kEnterNumberText = 961;
inline constexpr int32_t kEnterWholeNumberText = 963;
inline constexpr int32_t kNoMemoryText = 1001;
inline constexpr int32_t kNoMemoryForCalculationText = 1004;
inline constexpr int32_t kSingularMatrixText = 1008;
inline constexpr int32_t kVariableNeededText = 1009;
inline constexpr int32_t kFieldRequiredText = 1019;     // format with the field's number
inline constexpr int32_t kFieldIsCharacterText = 1022;  // format with the field's number
inline constexpr int32_t kLogAxisNeedsPositiveText = 1023;
inline constexpr int32_t kEnterExpressionText = 1035;
inline constexpr int32_t kFieldNeedsTwoColumnsText = 1056;  // format with the field's number
inline constexpr int32_t kPaneHasNoOptionsText = 1100;
inline constexpr int32_t kFieldListTooLongText = 1128;  // format: field, most columns
inline constexpr int32_t kAppTitleText = 57344;

// What a pane shows in place of results.
inline constexpr int32_t kNoMemoryForResultsText = 1005;
inline constexpr int32_t kTooFewValuesText = 1007;
inline constexpr int32_t kVariableVanishedText = 1025;
inline constexpr int32_t kAllValuesEqualText = 1042;
inline constexpr int32_t kNoResultsText = 1101;
inline constexpr int32_t kNoValuesSelectedText = 3023;
inline constexpr int32_t kValuesOffScaleText = 3903;

// Report labels.
inline constexpr int32_t kDataVariableLabel = 3001;
inline constexpr int32_t kSelectLabel = 3002;
inline constexpr int32_t kAnalysisSummaryHeading = 5733;

}  // namespace zv
