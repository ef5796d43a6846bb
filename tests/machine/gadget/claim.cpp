// Takes an interface of a USB device from its driver, as the print system's back end does, and
// keeps the interface until the program is killed. After that, no driver has the interface.
//
//     claim NODE INTERFACE
#include <fcntl.h>
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

int main(int count, char** arguments) {
  if (count != 3) {
    return 2;
  }
  const int node = ::open(arguments[1], O_RDWR | O_CLOEXEC);
  unsigned interface = static_cast<unsigned>(std::atoi(arguments[2]));
  usbdevfs_ioctl detach{};
  detach.ifno = static_cast<int>(interface);
  detach.ioctl_code = USBDEVFS_DISCONNECT;
  if (::ioctl(node, USBDEVFS_IOCTL, &detach) < 0 ||
      ::ioctl(node, USBDEVFS_CLAIMINTERFACE, &interface) < 0) {
    std::perror(arguments[1]);
    return 1;
  }
  ::pause();
}
