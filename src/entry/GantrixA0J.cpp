// SPDX-License-Identifier: Apache-2.0
#include "entry/GantrixA0J.h"

#include <exception>
#include <string>

#include "entry/RKParam.h"
#include "platform/user32/user32.h"
#include "store/RuntimeError.h"

struct RKParam {
    gantrix::RKParam object;
    std::string error;
};

namespace {

std::string Text(const char* value) {
    return value ? value : "";
}

}  // namespace

extern "C" {

RKParam* RKParam_Create(void) {
    return new RKParam();
}
void RKParam_Release(RKParam* obj) {
    delete obj;
}

const char* RKParam_Get_szPcName(const RKParam* obj) {
    return obj->object.szPcName.c_str();
}
void RKParam_Let_szPcName(RKParam* obj, const char* value) {
    obj->object.szPcName = Text(value);
}
const char* RKParam_Get_ProjectName(const RKParam* obj) {
    return obj->object.ProjectName.c_str();
}
void RKParam_Let_ProjectName(RKParam* obj, const char* value) {
    obj->object.ProjectName = Text(value);
}
int RKParam_Get_ContentChangeFlag(const RKParam* obj) {
    return obj->object.ContentChangeFlag ? 1 : 0;
}
void RKParam_Let_ContentChangeFlag(RKParam* obj, int value) {
    obj->object.ContentChangeFlag = value != 0;
}
const char* RKParam_Get_LanguageMode(const RKParam* obj) {
    return obj->object.LanguageMode.c_str();
}
void RKParam_Let_LanguageMode(RKParam* obj, const char* value) {
    obj->object.LanguageMode = Text(value);
}
int RKParam_Get_blnSubEditing1(const RKParam* obj) {
    return obj->object.blnSubEditing1 ? 1 : 0;
}
void RKParam_Let_blnSubEditing1(RKParam* obj, int value) {
    obj->object.blnSubEditing1 = value != 0;
}
int RKParam_Get_blnSubEditing2(const RKParam* obj) {
    return obj->object.blnSubEditing2 ? 1 : 0;
}
void RKParam_Let_blnSubEditing2(RKParam* obj, int value) {
    obj->object.blnSubEditing2 = value != 0;
}
int RKParam_Get_blnSubEditing3(const RKParam* obj) {
    return obj->object.blnSubEditing3 ? 1 : 0;
}
void RKParam_Let_blnSubEditing3(RKParam* obj, int value) {
    obj->object.blnSubEditing3 = value != 0;
}
intptr_t RKParam_Get_hParentWnd(const RKParam* obj) {
    return obj->object.hParentWnd;
}
void RKParam_Let_hParentWnd(RKParam* obj, intptr_t value) {
    obj->object.hParentWnd = value;
}

int RKParam_Param_main(RKParam* obj, int16_t* result) {
    obj->error.clear();
    try {
        const int16_t saved = obj->object.Param_main();
        if (result) *result = saved;
        obj->error = obj->object.Notice();
        return 0;
    } catch (const gantrix::RuntimeError& error) {
        obj->error = error.Description();
        return error.Number() != 0 ? error.Number() : -1;
    } catch (const std::exception& error) {
        obj->error = error.what();
        return -1;
    }
}

const char* RKParam_ErrorDescription(const RKParam* obj) {
    return obj->error.c_str();
}

void RKParam_RegisterHostWindow(intptr_t hwnd, RKParamWndProc proc, void* context) {
    User32RegisterWindow(hwnd, proc, context);
}

}  // extern "C"
