#pragma once

#define IDD_PROBE 100

#define IDC_LABEL 101
#define IDC_EDIT 102
#define IDC_GROUP 103
#define IDC_RADIO 104
#define IDC_CHECK 105
#define IDC_LIST 106
#define IDC_COMBO 107
#define IDC_PUSH 108
