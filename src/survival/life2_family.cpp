// The product-limit procedure's row of the Families table: its variable
// dialog, the variables Begin loads, the option defaults, the computation,
// the pane writers, the option dialogs and the interpretation.
#include "protocol/families.h"
#include "survival/life2.h"
#include "survival/life2_state.h"
#include "survival/survival_dialogs.h"
#include "survival/survival_strings.h"

namespace zv {
namespace {

void Compute(int32_t slot) {
  Life2Prepare(slot, 0);
}

int32_t WritePane(PaneWindow* pane, int32_t slot, int32_t item) {
  switch (item) {
    case 1:
      return Life2SummaryPane(pane, slot, item, 1);
    case 2:
      return Life2PercentilePane(pane, slot, item, 1);
    case 3:
      return Life2ComparisonPane(pane, slot, item, 1);
    case 8:
    case 9:
    case 10:
      return Life2PlotPane(pane, slot, item, item - 8);
    default:
      return 0;
  }
}

// 1 stored, 0 cancelled, -1 the pane has no options dialog.
int32_t OptionsDialog(int32_t slot, int32_t item) {
  ProcedureState& state = StateOf(slot);
  if (item == 2) return RunPercentilesDialog(state);
  if (item == 8) return RunLimitsDialog(state, kShowConfidenceLimits);
  return -1;
}

const VariableDialogLayout kDialog{
    .templateId = 848,
    .helpId = 42634,
    .caption = nullptr,
    .fields = {{.control = 116,
                .arrow = 119,
                .maxLength = 64,
                .isList = false,
                .allowEmpty = false,
                .allowText = false,
                .isSelect = false,
                .binding = kTimeBinding},
               {.control = 122,
                .arrow = 120,
                .maxLength = 64,
                .isList = false,
                .allowEmpty = true,
                .allowText = false,
                .isSelect = false,
                .binding = kCensorBinding},
               {.control = 261,
                .arrow = 121,
                .maxLength = 64,
                .isList = false,
                .allowEmpty = true,
                .allowText = true,
                .isSelect = false,
                .binding = kGroupBinding},
               {.control = 117,
                .arrow = 244,
                .maxLength = 64,
                .isList = false,
                .allowEmpty = true,
                .allowText = false,
                .isSelect = true,
                .binding = kSelectBinding}},
};

}  // namespace

void Life2WriteDefaults(ProcedureState& state) {
  Set(state, kShowConfidenceLimits, 0);
  Set(state, kLifeTablePane9Flag, 0);
  Set(state, kLifeTablePane10Flag, 0);
  Set(state, kShowDensityLimits, 0);
  Set(state, kShowHazardLimits, 0);
  constexpr double kDefaultPercentiles[kPercentileSlots] = {75, 50, 25, 0, 0, 0, 0, 0, 0, 0};
  for (uint32_t i = 0; i < kPercentileSlots; ++i)
    Set(state, kPercentiles, kDefaultPercentiles[i], i);
  Set(state, kConfidenceLevel, 95.0);
}

const FamilyInfo kLife2Family{
    .name = "Life2",
    .procedureCode = kLife2Code,
    .helpId = 33006,
    .titleString = kLife2Title,
    .titleEntry = 0,
    .firstListCount = 3,
    .secondListCount = 0,
    .lineListEntry = -1,
    .textOptionsMask = 2,
    .graphOptionsMask = 1,
    .setsExtraStale = false,
    .loadsNoColumns = false,
    .redoDoesNothing = false,
    .variables = {{.binding = kTimeBinding, .required = true, .allowText = false},
                  {.binding = kCensorBinding, .required = false, .allowText = false},
                  {.binding = kGroupBinding, .required = false, .allowText = true}},
    .dialog = &kDialog,
    .writeDefaults = Life2WriteDefaults,
    .compute = Compute,
    .writePane = WritePane,
    .optionsDialog = OptionsDialog,
    .interpret = InterpretLife2,
};

}  // namespace zv
