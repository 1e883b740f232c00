# Wine prefixes for tests and demonstrations, all below build/prefix; to be sourced.
#
# A template is made once (about 10 s); every prefix is a clone of it made of hard links (some ms). Wine rewrites the
# registry files in place, so a clone owns copies of those.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
prefixes=$root/build/prefix
wine=/usr/lib/wine/wine64
wineserver=/usr/lib/wine/wineserver64
# Raised with every change of the template; prefixes of an older recipe are made anew.
recipe=2

export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe=${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
export WINEARCH=win64
# Texts of the system follow the locale, and so does how file names outside of ASCII are read; the C runtime of Wine
# understands POSIX zone names only.
export LC_ALL=C.UTF-8
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

wine_is_complete() { # PREFIX
    [ "$(cat "$1/complete" 2>/dev/null)" = "$recipe" ]
}

wine_make_template() {
    local template=$prefixes/template building=$prefixes/template.new
    ! wine_is_complete "$template" || return 0
    rm -rf "$template" "$building" && mkdir -p "$building" "$HOME"
    WINEPREFIX=$building "$wine" wineboot -i >/dev/null 2>&1
    WINEPREFIX=$building "$wineserver" -w
    cp /usr/share/wine/fonts/*.ttf /usr/share/fonts/truetype/droid/DroidSansFallbackFull.ttf \
        "$building/drive_c/windows/Fonts/"
    # Fonts: DirectWrite sees registered fonts only. SystemLink: where the dialog font lacks a Chinese or Japanese character,
    # "DroidSansFallbackFull.ttf,Droid Sans Fallback" has it. Uniscribe: the same for edit controls, by the tags of the
    # scripts (Han, kana). Managed: without a window manager every closing window would wait
    # two seconds for one. ShowCrashDialog: a crash must end the process, not wait for a click.
    wine_import "$building" <<'REG'
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\Fonts]
"Tahoma (TrueType)"="tahoma.ttf"
"Tahoma Bold (TrueType)"="tahomabd.ttf"
"Droid Sans Fallback (TrueType)"="DroidSansFallbackFull.ttf"

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink]
"Tahoma"=hex(7):44,72,6f,69,64,53,61,6e,73,46,61,6c,6c,62,61,63,6b,46,75,6c,6c,2e,74,74,66,2c,44,72,6f,69,64,20,53,61,6e,73,20,46,61,6c,6c,62,61,63,6b,00,00
"Tahoma Bold"=hex(7):44,72,6f,69,64,53,61,6e,73,46,61,6c,6c,62,61,63,6b,46,75,6c,6c,2e,74,74,66,2c,44,72,6f,69,64,20,53,61,6e,73,20,46,61,6c,6c,62,61,63,6b,00,00

[HKEY_CURRENT_USER\Software\Wine\Uniscribe\Fallback]
"696e6168"="Droid Sans Fallback"
"616e616b"="Droid Sans Fallback"

[HKEY_CURRENT_USER\Software\Wine\X11 Driver]
"Managed"="N"

[HKEY_CURRENT_USER\Software\Wine\WineDbg]
"ShowCrashDialog"=dword:00000000
REG
    wine_stop "$building"
    echo "$recipe" >"$building/complete"
    mv "$building" "$template"
}

# Makes the prefix NAME from the template unless it is there; GRAPHICS is x11 or null (no display needed, no pictures).
wine_make_prefix() { # NAME GRAPHICS
    local prefix=$prefixes/$1 graphics=$2
    mkdir -p "$prefixes"
    exec 9>"$prefixes/lock"
    flock 9
    if ! wine_is_complete "$prefix"; then
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
        echo "$recipe" >"$prefix/complete"
    fi
    exec 9>&-
}

# What is started from here on has a virtual display; virtual_display is its process.
start_display() { # WIDTHxHEIGHT
    local number
    exec 7< <(exec Xvfb -displayfd 1 -screen 0 "$1x24" -nolisten tcp 2>/dev/null)
    virtual_display=$!
    read -r number <&7
    export DISPLAY=:$number
}

wine_remove_prefix() { # NAME
    [ ! -d "$prefixes/$1" ] || { wine_stop "$prefixes/$1"; rm -rf "${prefixes:?}/$1"; }
}
