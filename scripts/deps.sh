# Sourced by the build scripts: installs the Debian packages the build needs, if missing.

tarnic_packages=(cmake ninja-build g++ libgtest-dev libgmock-dev libbenchmark-dev)
# The device build's checks: the arm64 cross build under qemu-user, and the Android.bp files.
tarnic_device_packages=(g++-aarch64-linux-gnu qemu-user googletest blueprint-tools mini-soong)

# Usage: tarnic_install_deps [more packages...]
tarnic_install_deps() {
    local missing=()
    local pkg
    for pkg in "${tarnic_packages[@]}" "$@"; do
        if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed"; then
            missing+=("$pkg")
        fi
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return 0
    fi
    echo "Installing missing packages: ${missing[*]}"
    local sudo=()
    if [ "$(id -u)" -ne 0 ]; then
        sudo=(sudo)
    fi
    "${sudo[@]}" apt-get update
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y --no-install-recommends \
        "${missing[@]}"
}
