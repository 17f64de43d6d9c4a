// SPDX-License-Identifier: Apache-2.0
/* The parameter mode's interface for host programs. C linkage, UTF-8 strings.
 *
 * A host creates an RKParam, sets its eight properties, registers its window procedure for
 * the handle it gives as hParentWnd (to receive WM_COMMAND 0x0111 with wParam 60000 on every
 * activation of a window of the component and around every message box), and calls
 * RKParam_Param_main, which returns when the user has closed the parameter menu.
 *
 * Param_main uses the host's QApplication when there is one and creates one otherwise; it
 * must be called on the thread that runs (or will run) the Qt event loop. */
#ifndef GANTRIXA0J_H
#define GANTRIXA0J_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct RKParam RKParam;

RKParam* RKParam_Create(void);
void RKParam_Release(RKParam* obj);

/* One getter and one setter per property, in the order of the class's table; a returned
 * string stays valid until the next set of that property. */
const char* RKParam_Get_szPcName(const RKParam* obj);
void RKParam_Let_szPcName(RKParam* obj, const char* value);
const char* RKParam_Get_ProjectName(const RKParam* obj);
void RKParam_Let_ProjectName(RKParam* obj, const char* value);
int RKParam_Get_ContentChangeFlag(const RKParam* obj); /* 0 or 1 */
void RKParam_Let_ContentChangeFlag(RKParam* obj, int value);
const char* RKParam_Get_LanguageMode(const RKParam* obj);
void RKParam_Let_LanguageMode(RKParam* obj, const char* value);
int RKParam_Get_blnSubEditing1(const RKParam* obj);
void RKParam_Let_blnSubEditing1(RKParam* obj, int value);
int RKParam_Get_blnSubEditing2(const RKParam* obj);
void RKParam_Let_blnSubEditing2(RKParam* obj, int value);
int RKParam_Get_blnSubEditing3(const RKParam* obj);
void RKParam_Let_blnSubEditing3(RKParam* obj, int value);
intptr_t RKParam_Get_hParentWnd(const RKParam* obj);
void RKParam_Let_hParentWnd(RKParam* obj, intptr_t value);

/* 0 on success with 1 (saved) or 0 in *result; non-zero on a runtime error, whose text
 * RKParam_ErrorDescription returns (valid until the next call of Param_main). An empty
 * ProjectName is such an error. A run refused before its menu opens (the project is in use
 * by another run, or its "param.tmp" exists but cannot be loaded whole) returns 0 with 0 in
 * *result, and RKParam_ErrorDescription gives the reason, as its message box showed it; after
 * a run that saved but could not clean up after itself, it gives those warnings. Otherwise
 * it is empty. */
int RKParam_Param_main(RKParam* obj, int16_t* result);
const char* RKParam_ErrorDescription(const RKParam* obj);

/* The host's window procedure for WM_COMMAND notifications; proc NULL removes it. */
typedef void (*RKParamWndProc)(intptr_t hwnd, uint32_t msg, uintptr_t wParam, intptr_t lParam,
                               void* context);
void RKParam_RegisterHostWindow(intptr_t hwnd, RKParamWndProc proc, void* context);

#ifdef __cplusplus
}
#endif

#endif /* GANTRIXA0J_H */
