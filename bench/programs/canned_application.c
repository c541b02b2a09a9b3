/* Stands in for the application: answers every request line on a socket with the same result.
   usage: canned_application SOCKET FILE   (FILE holds the result, JSON without line feeds) */

#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

enum { most_clients = 64 };

static char *answer;
static size_t answer_size;

static void die(const char *what) {
  perror(what);
  exit(1);
}

static void load_answer(const char *path) {
  static const char head[] = "{\"jsonrpc\":\"2.0\",\"id\":1,\"result\":";
  FILE *file = fopen(path, "rb");
  if (file == NULL || fseek(file, 0, SEEK_END) != 0) die(path);
  const size_t size = (size_t)ftell(file);
  rewind(file);
  answer = malloc(sizeof head + size + 2);
  if (answer == NULL) die("malloc");
  memcpy(answer, head, sizeof head - 1);
  if (fread(answer + sizeof head - 1, 1, size, file) != size) die(path);
  fclose(file);
  memcpy(answer + sizeof head - 1 + size, "}\n", 2);
  answer_size = sizeof head - 1 + size + 2;
}

static int listen_at(const char *path) {
  struct sockaddr_un address = {.sun_family = AF_UNIX};
  strncpy(address.sun_path, path, sizeof address.sun_path - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  if (bind(listener, (struct sockaddr *)&address, sizeof address) != 0 || listen(listener, 64) != 0) die(path);
  return listener;
}

static int send_answer(int client) {
  for (size_t sent = 0; sent < answer_size;) {
    const ssize_t count = write(client, answer + sent, answer_size - sent);
    if (count <= 0) return 0;
    sent += (size_t)count;
  }
  return 1;
}

/* Answers each line feed that arrives; 0 when the client is gone. */
static int serve(int client) {
  char chunk[65536];
  const ssize_t count = read(client, chunk, sizeof chunk);
  if (count <= 0) return 0;
  for (ssize_t i = 0; i < count; ++i) {
    if (chunk[i] == '\n' && !send_answer(client)) return 0;
  }
  return 1;
}

int main(int count, char **arguments) {
  if (count != 3) return 64;
  signal(SIGPIPE, SIG_IGN);
  load_answer(arguments[2]);
  struct pollfd waiting[most_clients + 1] = {{listen_at(arguments[1]), POLLIN, 0}};
  nfds_t used = 1;
  for (;;) {
    if (poll(waiting, used, -1) < 0) die("poll");
    for (nfds_t i = used; i-- > 1;) {
      if (waiting[i].revents == 0 || serve(waiting[i].fd)) continue;
      close(waiting[i].fd);
      waiting[i] = waiting[--used];
    }
    if (waiting[0].revents != 0 && used <= most_clients) {
      const int client = accept(waiting[0].fd, NULL, NULL);
      if (client >= 0) waiting[used++] = (struct pollfd){client, POLLIN, 0};
    }
  }
}
