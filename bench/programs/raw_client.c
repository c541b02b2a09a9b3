/* What a call costs when the program makes the system calls and nothing else: request, answer, print.
   usage: raw_client REQUEST   (the socket is found below HOME) */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

int main(int count, char **arguments) {
  static char chunk[4096];
  if (count != 2) return 64;
  struct sockaddr_un address = {.sun_family = AF_UNIX};
  snprintf(address.sun_path, sizeof address.sun_path, "%s/Library/Containers/app.vell.Vell/Data/cli.sock",
           getenv("HOME"));
  const int server = socket(AF_UNIX, SOCK_STREAM, 0);
  if (connect(server, (struct sockaddr *)&address, sizeof address) != 0) return 1;
  const size_t size = strlen(arguments[1]);
  arguments[1][size] = '\n';
  if (write(server, arguments[1], size + 1) < 0) return 1;
  for (;;) {
    const ssize_t got = read(server, chunk, sizeof chunk);
    if (got <= 0 || write(STDOUT_FILENO, chunk, (size_t)got) != got) return 1;
    if (chunk[got - 1] == '\n') return 0;
  }
}
