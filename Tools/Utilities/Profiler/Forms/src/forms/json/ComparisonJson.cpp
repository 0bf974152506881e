#include "forms/json/ComparisonJson.h"

#include "forms/json/ComparisonFields.h"
#include "forms/json/FieldsJson.h"

namespace zeb::forms {

std::string_view keyOf(analysis::Basis basis) {
    using analysis::Basis;
    switch (basis) {
        case Basis::oneEach:
            return "one-each";
        case Basis::several:
            return "several";
        case Basis::tooFew:
            return "too-few";
        case Basis::paired:
            return "paired";
    }
    return "";
}

std::string_view keyOf(analysis::GateOutcome outcome) {
    using analysis::GateOutcome;
    switch (outcome) {
        case GateOutcome::pass:
            return "pass";
        case GateOutcome::unsure:
            return "unsure";
        case GateOutcome::slower:
            return "slower";
        case GateOutcome::incomparable:
            return "incomparable";
    }
    return "";
}

std::string_view keyOf(analysis::Answer::Kind kind) {
    using Kind = analysis::Answer::Kind;
    switch (kind) {
        case Kind::slower:
            return "slower";
        case Kind::faster:
            return "faster";
        case Kind::same:
            return "same";
        case Kind::notSlower:
            return "not-slower";
        case Kind::unsure:
            return "unsure";
    }
    return "";
}

std::string_view keyOf(analysis::Total total) {
    using analysis::Total;
    switch (total) {
        case Total::marlix:
            return "marlix";
        case Total::average:
            return "marlix-average";
        case Total::backend:
            return "backend";
        case Total::accelerator:
            return "accelerator";
        case Total::outside:
            return "outside";
        case Total::ipc:
            return "ipc";
        case Total::copies:
            return "copies";
        case Total::queueWait:
            return "queue-wait";
        case Total::init:
            return "init";
        case Total::finalize:
            return "finalize";
        case Total::layers:
            return "layers";
    }
    return "";
}

void writeComparisonJson(std::ostream& out, const analysis::Comparison& comparison,
                         const std::optional<analysis::Gate>& gate, JsonStyle style) {
    JsonWriter json(out, style);
    FieldsWriter fields(json);
    json.beginObject();
    json.member("schema", comparisonSchema);
    fields.putMembers(comparison);
    json.key("gate");
    if (gate) {
        fields.put(Judgement{*gate, judge(comparison, *gate)});
    } else {
        json.null();
    }
    json.endObject();
    json.breakLine();
    json.flush();
}

}  // namespace zeb::forms
