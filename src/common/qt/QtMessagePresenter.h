// SPDX-License-Identifier: Apache-2.0
#pragma once
// Shows the numbered messages as real QMessageBoxes, modal to the active window, so that a
// host or a test finds them as the active modal widget.

#include "common/Messages.h"

namespace gantrix {

class QtMessagePresenter : public MessagePresenter {
  public:
    MessageButton Present(const MessageBoxLook& box) override;

    // The presenter the component uses by default.
    static QtMessagePresenter& Instance();
};

}  // namespace gantrix
