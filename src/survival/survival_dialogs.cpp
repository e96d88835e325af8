#include "survival/survival_dialogs.h"

#include "services/dialog_exchange.h"
#include "services/option_dialog.h"
#include "survival/life2_state.h"
#include "zvwin/zvwin.h"

namespace zv {
namespace {

constexpr int32_t kFirstPercentileControl = 141;
constexpr int32_t kLimitsCheckBox = 107;
constexpr int32_t kLevelControl = 141;

class PercentilesDialog : public OptionDialog {
 public:
  PercentilesDialog() : OptionDialog(113, 42632) {}
  double percentiles[kPercentileSlots] = {};

 protected:
  void Exchange(DataExchange& dx) override {
    for (int32_t i = 0; i < kPercentileSlots; ++i) {
      ExchangeDouble(dx, kFirstPercentileControl + i, &percentiles[i]);
      CheckDoubleRange(dx, kFirstPercentileControl + i, percentiles[i], 0.0, 99.99);
    }
  }
};

class LimitsDialog : public OptionDialog {
 public:
  LimitsDialog() : OptionDialog(852, 42633) {}
  int32_t showLimits = 0;
  double level = 95.0;

 protected:
  void Exchange(DataExchange& dx) override {
    ExchangeCheck(dx, kLimitsCheckBox, &showLimits);
    ExchangeDouble(dx, kLevelControl, &level);
    CheckDoubleRange(dx, kLevelControl, level, 0.0001, 99.9999);
  }
};

}  // namespace

int32_t RunPercentilesDialog(ProcedureState& state) {
  PercentilesDialog dialog;
  for (uint32_t i = 0; i < kPercentileSlots; ++i) {
    dialog.percentiles[i] = Get(state, kPercentiles, i);
  }
  if (dialog.DoModal() != kIdOk) return 0;
  for (uint32_t i = 0; i < kPercentileSlots; ++i) {
    Set(state, kPercentiles, dialog.percentiles[i], i);
  }
  return 1;
}

int32_t RunLimitsDialog(ProcedureState& state, FamilyField<int32_t> flag) {
  LimitsDialog dialog;
  dialog.showLimits = Get(state, flag);
  dialog.level = Get(state, kConfidenceLevel);
  if (dialog.DoModal() != kIdOk) return 0;
  Set(state, flag, dialog.showLimits);
  Set(state, kConfidenceLevel, dialog.level);
  return 1;
}

}  // namespace zv
