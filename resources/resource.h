#pragma once

// Numbers shared by the resource scripts and the code. The dialogs' numbers are fixed: tools that drive the program
// from outside rely on them.

#define IDI_PROGRAM 1
#define IDD_ABOUT 108
#define IDD_CONFIG 129
#define IDD_WAIT 130
#define IDD_CORRECTION 151
#define IDP_LOGO 132

#define IDC_APPLY 3
#define IDC_STATUS 1001
#define IDC_START 1002
#define IDC_STOP 1003
#define IDC_SHARE_ALL 1005
#define IDC_SHARE_SELECTED 1006
#define IDC_PORTS 1007
#define IDC_AUTO_DISCOVERY 1008
#define IDC_SECURITY 1010
#define IDC_ABOUT 1013
#define IDC_STATUS_LABEL 1014
#define IDC_SETTINGS_FRAME 1015
#define IDC_LANGUAGE 1016
#define IDC_ABOUT_LOGO 1017
#define IDC_ABOUT_TEXT 1018
#define IDC_ABOUT_LINKS 1019
#define IDC_ACCESS_WORDS 1023
#define IDC_CORRECTION 1024
#define IDC_PORTS_LABEL 1028
#define IDC_LANGUAGE_LABEL 1029
#define IDC_CORRECTION_LABEL 1030

#define IDC_WAIT_PROGRESS 109
#define IDC_WAIT_TEXT 110
