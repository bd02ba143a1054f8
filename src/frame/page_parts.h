// The parts that every administration page built in code shares: the head of a form page with
// its browser check, the foot, the charset select of the rule forms, and the alerts that
// report an outcome and send the browser back or on.
#pragma once

#include <span>
#include <string_view>

#include "frame/markup.h"

namespace ostrakan {

// One refusal of a form's check() script: when the field's `condition` holds (a script
// expression on it, "value == ''"), the alert says `message` and the cursor goes to the field.
struct FieldCheck {
  Markup field;
  Markup condition;
  Markup message;
};

// From <html> to the opening of the form's table: the title (also the page's heading), the
// check() script that refuses the form for the first failing check, and a form named "form"
// posted to `action` through that check.
Markup FormPageHead(const Markup& title, std::span<const FieldCheck> checks, const Markup& action);

// The end of such a page: the form closed, `afterForm` (a help text, say), the footer line.
Markup FormPageFoot(const Markup& afterForm = {});

// The select named "charset" of the rule forms, the stored value (any case) selected.
Markup CharsetSelect(std::u16string_view stored);

// <Script>window.alert('message');history.go(-1);</Script>: the outcome, then back to the form.
Markup AlertAndGoBack(const Markup& message);

// The outcome, then on to `address` (written as a script string: no address can end the
// script).
Markup AlertAndGoTo(const Markup& message, std::u16string_view address);

}  // namespace ostrakan
