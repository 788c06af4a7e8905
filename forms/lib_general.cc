#include "tovalin/lib_general.h"

#include "forms/focus.h"
#include "forms/host_services.h"
#include "forms/key_filters.h"
#include "forms/layout.h"
#include "forms/member_access.h"
#include "forms/report_parameters.h"
#include "forms/strip_delimiter.h"
#include "forms/tag_string.h"
#include "forms/value_checks.h"
#include "frame/object/error_translation.h"
#include "tovalin/convert.h"

namespace tovalin {

struct LibGeneral::Core {
  char16_t separator = u'»';
  bool uses_layouts = false;
  Text application;
  std::shared_ptr<const HostServices> host = std::make_shared<const HostServices>();
  Ref<SettingsStore> settings;

  // Each held while code of the host runs, which may put others in their place.
  std::shared_ptr<const HostServices> Host() const { return host; }
  Ref<SettingsStore> Settings() const { return settings ? settings : DefaultSettings(); }
};

LibGeneral::LibGeneral() : core_(std::make_unique<Core>()) {}
LibGeneral::~LibGeneral() = default;

void LibGeneral::CheckNumber(std::int16_t& KeyAscii) const {
  KeyAscii = FilterKey(KeyAscii, kNumberKeys);
}

void LibGeneral::CheckDate(std::int16_t& KeyAscii) const {
  KeyAscii = FilterKey(KeyAscii, kDateKeys);
}

void LibGeneral::CheckTime(std::int16_t& KeyAscii) const {
  KeyAscii = FilterKey(KeyAscii, kTimeKeys);
}

Text LibGeneral::AddText(TextView vData, std::int32_t KeyAscii) const {
  return RaisingErrors([&] { return tovalin::AddText(vData, KeyAscii); });
}

Text LibGeneral::AddNumber(TextView vData, std::int32_t KeyAscii) const {
  return RaisingErrors([&] { return tovalin::AddNumber(vData, KeyAscii); });
}

void LibGeneral::GotFocus(Ref<Object> rctrControl, TextView ostrTextoBarra,
                          Ref<Object> rctr) const {
  if (!rctr) return;
  const Ref<const LibGeneral> alive = Hold(*this);
  IgnoreErrors([&] {
    if (!ostrTextoBarra.empty()) return MsgBar(rctr, ostrTextoBarra);
    if (rctrControl) MsgBar(rctr, HelpText(*rctrControl, core_->separator));
  });
}

Variant LibGeneral::LostFocus(const Variant& rctrControl, Ref<Object> rctr) const {
  return RaisingErrors([&] {
    const Ref<const LibGeneral> alive = Hold(*this);
    const Ref<Object> control = RequireObject(rctrControl);
    CheckAndMark(*control, core_->separator, *core_->Host());
    MsgBar(rctr, {});
    return Variant();
  });
}

void LibGeneral::SelectText(Ref<Object> oControl) const {
  RaisingErrors([&] {
    const Ref<Object> control = oControl ? oControl : ActiveControl(*core_->Host());
    if (control) SelectContents(*control);
  });
}

bool LibGeneral::IsControl(Ref<Object> ctrControl) const {
  return ctrControl && IsDataEntry(KindOf(*ctrControl));
}

Text LibGeneral::GetTag(TextView vstrTag, std::uint8_t vbytIndice) const {
  return RaisingErrors(
      [&] { return Text(tovalin::GetTag(vstrTag, vbytIndice, core_->separator)); });
}

Text LibGeneral::LetTag(TextView vstrTag, std::uint8_t vbytIndice, TextView vstrNewValue) const {
  return RaisingErrors(
      [&] { return tovalin::LetTag(vstrTag, vbytIndice, vstrNewValue, core_->separator); });
}

Variant LibGeneral::Separador() const {
  return RaisingErrors([&] { return Variant(Text(1, core_->separator)); });
}

void LibGeneral::LetSeparador(const Variant& NewValue) {
  RaisingErrors([&] {
    const Text text = ToText(NewValue);
    core_->separator = text.empty() ? u' ' : text.front();
  });
}

void LibGeneral::AdicionarParametro(Text& rstrParametros, TextView vstrParametro,
                                    TextView vstrOperadorUnion, TextView vstrOperador,
                                    const Variant& vvarValor, std::int16_t vintTipo) const {
  RaisingErrors([&] {
    AppendCondition(rstrParametros,
                    {vstrParametro, vstrOperadorUnion, vstrOperador, vvarValor, vintTipo});
  });
}

Text LibGeneral::StripDelimiter(TextView vString, TextView vDelimiters) const {
  return RaisingErrors([&] { return tovalin::StripDelimiter(vString, vDelimiters); });
}

Variant LibGeneral::Pot(const Variant& vvntBase, const Variant& vvntPotencia) const {
  return RaisingErrors([&] { return WholePower(vvntBase, vvntPotencia); });
}

Variant LibGeneral::EstaVacio(TextView vStr) const { return IsBlank(vStr); }

Variant LibGeneral::nvl(const Variant& varValue, const Variant& varDefault) const {
  return varValue.Is(Subtype::Null) ? varDefault.Value() : varValue.Value();
}

bool LibGeneral::EsNulo(const Variant& vvarCampo) const { return IsNoValue(vvarCampo); }

bool LibGeneral::Check(const Variant& vvarDato, std::int16_t vintType) const {
  return RaisingErrors([&] { return PassesAs(vvarDato, vintType); });
}

bool LibGeneral::gbolCUI() const { return core_->uses_layouts; }
void LibGeneral::LetgbolCUI(bool NewValue) { core_->uses_layouts = NewValue; }

const Text& LibGeneral::Aplicacion() const { return core_->application; }
void LibGeneral::LetAplicacion(const Text& NewValue) {
  RaisingErrors([&] { core_->application = NewValue; });
}

void LibGeneral::SaveControlProperties(TextView Section, TextView Key, Ref<Object> ctrl) const {
  if (!core_->uses_layouts || !ctrl) return;
  const Ref<const LibGeneral> alive = Hold(*this);
  IgnoreErrors([&] {
    const Text layout = LayoutText(*ctrl);
    if (!layout.empty()) core_->Settings()->Save(Text(core_->application), Section, Key, layout);
  });
}

void LibGeneral::GetControlProperties(TextView Section, TextView Key, Ref<Object> ctrl) const {
  RaisingErrors([&] {
    if (!ctrl) return;
    if (!core_->uses_layouts) {
      if (KindOf(*ctrl) == ControlKind::Grid) IgnoreErrors([&] { FitGridColumns(*ctrl); });
      return;
    }
    Text layout;
    IgnoreErrors(
        [&] { layout = core_->Settings()->Get(Text(core_->application), Section, Key, {}); });
    if (!layout.empty()) ApplyLayout(*ctrl, layout);
  });
}

// The former services are destroyed last: what they hold may release this object.
void LibGeneral::UseHost(HostServices services) {
  auto kept = std::make_shared<const HostServices>(std::move(services));
  core_->host.swap(kept);
}

void LibGeneral::UseSettings(Ref<SettingsStore> store) { core_->settings = std::move(store); }

void LibGeneral::MsgBar(Ref<Object> rctr, TextView vstrTexto, bool vbolPausa) const {
  RaisingErrors([&] { ShowOnStatusBar(*core_->Host(), rctr, vstrTexto, vbolPausa); });
}

}  // namespace tovalin
