#pragma once

#define IDD_PROBE 100

#define IDC_LABEL 101
#define IDC_EDIT 102
#define IDC_LIST 103
