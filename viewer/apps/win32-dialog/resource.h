// The numbers by which the dialog's template and its code know the controls. The resource compiler reads this
// too, so they are macros.
#pragma once

// NOLINTBEGIN(modernize-macro-to-enum)
#define IDD_VIEWER 100

#define IDC_VIEWPORT 1000 /* a frame, never shown: where the viewport goes */
#define IDC_OPEN 1001
#define IDC_BACKGROUND 1002
#define IDC_OPACITY 1003
#define IDC_OPACITY_TEXT 1004

/* In the order of viewer::StandardView. */
#define IDC_VIEW_FRONT 1010
#define IDC_VIEW_BACK 1011
#define IDC_VIEW_LEFT 1012
#define IDC_VIEW_RIGHT 1013
#define IDC_VIEW_TOP 1014
#define IDC_VIEW_BOTTOM 1015
#define IDC_VIEW_SE 1016
#define IDC_VIEW_SW 1017
#define IDC_VIEW_NE 1018
#define IDC_VIEW_NW 1019

#define IDC_PERSPECTIVE 1020
#define IDC_PARALLEL 1021
#define IDC_FACES 1022
#define IDC_LINES 1023

/* Check boxes, one for each category; the last one stands for all that are left. */
#define IDC_CATEGORY_FIRST 1030
#define IDC_CATEGORY_LAST 1037
// NOLINTEND(modernize-macro-to-enum)
