# Wine prefixes for tests and demonstrations, all below build/prefix; to be sourced.
#
# A template is made once (about 10 s); every prefix is a clone of it made of hard links (some ms). Wine rewrites the
# registry files in place, so a clone owns copies of those.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
prefixes=$root/build/prefix
wine=/usr/lib/wine/wine64
wineserver=/usr/lib/wine/wineserver64

export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe=${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
export WINEARCH=win64
# Texts of the system follow the locale, and the C runtime of Wine understands POSIX zone names only.
export LC_ALL=C
export TZ=${TIDELINK_ZONE:-CET-1CEST}
# The folders of the user inside a prefix are links into the home folder.
export HOME=$prefixes/home

wine_stop() { # PREFIX
    WINEPREFIX=$1 "$wineserver" -k 2>/dev/null || true
    WINEPREFIX=$1 "$wineserver" -w
}

# A registry script (REGEDIT4 syntax, without its first line) from standard input into a prefix.
wine_import() { # PREFIX
    local script
    script=$(mktemp --suffix=.reg)
    { printf 'REGEDIT4\r\n\r\n'; sed 's/$/\r/'; } >"$script"
    WINEPREFIX=$1 "$wine" regedit /S "$script" >/dev/null 2>&1
    rm -f "$script"
}

wine_make_template() {
    local template=$prefixes/template building=$prefixes/template.new
    [ ! -e "$template/complete" ] || return 0
    rm -rf "$building" && mkdir -p "$building" "$HOME"
    WINEPREFIX=$building "$wine" wineboot -i >/dev/null 2>&1
    WINEPREFIX=$building "$wineserver" -w
    cp /usr/share/wine/fonts/*.ttf "$building/drive_c/windows/Fonts/"
    # Fonts: DirectWrite sees registered fonts only. Managed: without a window manager every closing window would wait
    # two seconds for one. ShowCrashDialog: a crash must end the process, not wait for a click.
    wine_import "$building" <<'REG'
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\Fonts]
"Tahoma (TrueType)"="tahoma.ttf"
"Tahoma Bold (TrueType)"="tahomabd.ttf"

[HKEY_CURRENT_USER\Software\Wine\X11 Driver]
"Managed"="N"

[HKEY_CURRENT_USER\Software\Wine\WineDbg]
"ShowCrashDialog"=dword:00000000
REG
    wine_stop "$building"
    touch "$building/complete"
    mv "$building" "$template"
}

# Makes the prefix NAME from the template unless it is there; GRAPHICS is x11 or null (no display needed, no pictures).
wine_make_prefix() { # NAME GRAPHICS
    local prefix=$prefixes/$1 graphics=$2
    mkdir -p "$prefixes"
    exec 9>"$prefixes/lock"
    flock 9
    if [ ! -e "$prefix/complete" ]; then
        wine_make_template 9>&-
        rm -rf "$prefix"
        cp -al "$prefixes/template" "$prefix"
        for file in "$prefixes"/template/*.reg; do cp --remove-destination "$file" "$prefix/"; done
        rm -f "$prefix/wineserver" "$prefix/complete"
        wine_import "$prefix" 9>&- <<REG
[HKEY_CURRENT_USER\\Software\\Wine\\Drivers]
"Graphics"="$graphics"
REG
        wine_stop "$prefix" 9>&-
        touch "$prefix/complete"
    fi
    exec 9>&-
}

wine_remove_prefix() { # NAME
    [ ! -d "$prefixes/$1" ] || { wine_stop "$prefixes/$1"; rm -rf "${prefixes:?}/$1"; }
}
