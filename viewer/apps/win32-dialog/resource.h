// The identifiers of the dialog template and its controls. They are macros because the resource compiler
// reads this file, too.
#pragma once

// NOLINTBEGIN(modernize-macro-to-enum)
#define IDD_VIEWER 100

#define IDC_VIEWPORT 1000 /* an invisible frame that marks the place of the viewport */
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

/* One check box per category; the last one switches all remaining categories. */
#define IDC_CATEGORY_FIRST 1030
#define IDC_CATEGORY_LAST 1037
// NOLINTEND(modernize-macro-to-enum)
