/* The yardstick of the program's start: the same dialog template, port list and platform calls in plain C, without
   texts from packs, without layout and without classes. */
#include "resource.h"

#include <windows.h>

#include <commctrl.h>
#include <objbase.h>
#include <setupapi.h>
#include <stdlib.h>

static const GUID com_port_interface = {0x86E0D1E0, 0x8089, 0x11D0, {0x9C, 0xE4, 0x08, 0x00, 0x3E, 0x30, 0x1F, 0x73}};
static const wchar_t title[] = L"Zelmark Tidelink Server Control Reference";

typedef struct {
    wchar_t name[128];
    DWORD number;
} port;

static port ports[256];
static int port_count;

static DWORD number_of(HDEVINFO set, SP_DEVINFO_DATA* device)
{
    wchar_t text[260];
    DWORD type = 0;
    DWORD size = sizeof text;
    DWORD number = 0;
    HKEY key = SetupDiOpenDevRegKey(set, device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
    if (key == INVALID_HANDLE_VALUE)
        return 0;
    if (RegQueryValueExW(key, L"PortName", NULL, &type, (BYTE*)text, &size) == ERROR_SUCCESS && type == REG_SZ &&
        size >= 10)
        for (const wchar_t* digit = text + 3; *digit >= L'0' && *digit <= L'9'; ++digit)
            number = number * 10 + (DWORD)(*digit - L'0');
    RegCloseKey(key);
    return number;
}

static int by_number(const void* left, const void* right)
{
    const DWORD a = ((const port*)left)->number;
    const DWORD b = ((const port*)right)->number;
    return (a > b) - (a < b);
}

static void enumerate_ports(void)
{
    SP_DEVINFO_DATA device = {.cbSize = sizeof device};
    HDEVINFO set = SetupDiGetClassDevsExW(&com_port_interface, NULL, NULL, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE, NULL,
                                          NULL, NULL);
    if (set == INVALID_HANDLE_VALUE)
        return;
    for (DWORD i = 0; port_count < 256 && SetupDiEnumDeviceInfo(set, i, &device); ++i) {
        port* next = &ports[port_count];
        next->number = number_of(set, &device);
        if (next->number == 0)
            continue;
        SetupDiGetDeviceRegistryPropertyW(set, &device, SPDRP_FRIENDLYNAME, NULL, (BYTE*)next->name,
                                          sizeof next->name - sizeof(wchar_t), NULL);
        ++port_count;
    }
    SetupDiDestroyDeviceInfoList(set);
    qsort(ports, (size_t)port_count, sizeof ports[0], by_number);
}

static void read_settings(void)
{
    static const wchar_t* const names[] = {L"securityDescriptor", L"autoDiscovery", L"sharedPorts", L"language"};
    BYTE data[2048];
    HKEY key = NULL;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Zelmark\\Tidelink Server 7.01", 0, NULL, 0, KEY_READ, NULL,
                        &key, NULL) != ERROR_SUCCESS)
        return;
    for (size_t i = 0; i < sizeof names / sizeof names[0]; ++i) {
        DWORD size = sizeof data;
        RegQueryValueExW(key, names[i], NULL, NULL, data, &size);
    }
    RegCloseKey(key);
}

/* The service is not there, as for the program that is measured beside this one. */
static void ask_for_service(HWND status)
{
    SC_HANDLE manager = OpenSCManagerW(NULL, SERVICES_ACTIVE_DATABASEW, SC_MANAGER_CONNECT);
    SC_HANDLE service = manager ? OpenServiceW(manager, L"zelpssrv", SERVICE_QUERY_STATUS) : NULL;
    HANDLE event = OpenEventW(SYNCHRONIZE, FALSE, L"Global\\tidelink_reference");
    SetWindowTextW(status, service || event ? L"Running" : L"Not installed");
    if (event)
        CloseHandle(event);
    if (service)
        CloseServiceHandle(service);
    if (manager)
        CloseServiceHandle(manager);
}

static void fill_list(HWND list)
{
    RECT area;
    ListView_SetExtendedListViewStyle(list, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    GetClientRect(list, &area);
    LVCOLUMNW column = {.mask = LVCF_WIDTH, .cx = area.right};
    SendMessageW(list, LVM_INSERTCOLUMNW, 0, (LPARAM)&column);
    for (int i = 0; i < port_count; ++i) {
        LVITEMW item = {.mask = LVIF_TEXT, .iItem = i, .pszText = ports[i].name};
        SendMessageW(list, LVM_INSERTITEMW, 0, (LPARAM)&item);
        item = (LVITEMW){.mask = LVIF_PARAM, .iItem = i, .lParam = (LPARAM)ports[i].number};
        SendMessageW(list, LVM_SETITEMW, 0, (LPARAM)&item);
        item = (LVITEMW){.stateMask = 0xF000, .state = 0x2000};
        SendMessageW(list, LVM_SETITEMSTATE, (WPARAM)i, (LPARAM)&item);
    }
}

static INT_PTR CALLBACK dialog_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam)
{
    (void)lparam;
    switch (message) {
    case WM_INITDIALOG:
        SetWindowTextW(dialog, title);
        enumerate_ports();
        fill_list(GetDlgItem(dialog, IDC_PORTS));
        SendDlgItemMessageW(dialog, IDC_LANGUAGE, CB_ADDSTRING, 0, (LPARAM)L"English");
        SendDlgItemMessageW(dialog, IDC_LANGUAGE, CB_SETCURSEL, 0, 0);
        CheckDlgButton(dialog, IDC_AUTO_DISCOVERY, BST_CHECKED);
        CheckDlgButton(dialog, IDC_SHARE_ALL, BST_CHECKED);
        EnableWindow(GetDlgItem(dialog, IDC_PORTS), FALSE);
        ask_for_service(GetDlgItem(dialog, IDC_STATUS));
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wparam) == IDCANCEL)
            DestroyWindow(dialog);
        return TRUE;
    case WM_DESTROY:
        PostQuitMessage(0);
        return TRUE;
    default:
        return FALSE;
    }
}

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE previous, wchar_t* command_line, int show)
{
    INITCOMMONCONTROLSEX controls = {.dwSize = sizeof controls, .dwICC = 0x4237};
    MSG message;
    (void)previous;
    (void)command_line;
    if (FindWindowExW(NULL, NULL, NULL, title))
        return 0;
    CoInitialize(NULL);
    HANDLE marker = CreateMutexW(NULL, FALSE, L"Global\\Zelmarkco_TIDELINK_SERVER_Reference_Mutex");
    read_settings();
    InitCommonControlsEx(&controls);
    HWND dialog = CreateDialogParamW(instance, MAKEINTRESOURCEW(IDD_CONFIG), NULL, dialog_procedure, 0);
    ShowWindow(dialog, show);
    while (GetMessageW(&message, NULL, 0, 0) > 0) {
        if (!IsDialogMessageW(dialog, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    CloseHandle(marker);
    CoUninitialize();
    return (int)message.wParam;
}
