/* An MCP server that does the least: plain reads and writes, one request after the other.
   usage: mcp_peer [SOCKET]   (asks the application there; its result becomes a tool's text) */

#define _GNU_SOURCE
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

enum { chunk = 65536 };

struct buffer {
  char *bytes;
  size_t size, room;
};

static struct buffer response, output;
static int application = -1;

static void die(const char *what) {
  perror(what);
  exit(1);
}

static char *room_for(struct buffer *to, size_t count) {
  if (to->room < to->size + count) {
    to->room = 2 * (to->size + count);
    to->bytes = realloc(to->bytes, to->room);
    if (to->bytes == NULL) die("realloc");
  }
  return to->bytes + to->size;
}

static void put(struct buffer *to, const char *bytes, size_t count) {
  memcpy(room_for(to, count), bytes, count);
  to->size += count;
}

static void put_text(struct buffer *to, const char *text) { put(to, text, strlen(text)); }

/* Appends what the next read gives; 0 at the end of the input. */
static size_t fill(struct buffer *from, int descriptor) {
  const ssize_t count = read(descriptor, room_for(from, chunk), chunk);
  if (count < 0) die("read");
  from->size += (size_t)count;
  return (size_t)count;
}

static void write_all(int descriptor, const char *bytes, size_t size) {
  while (size > 0) {
    const ssize_t count = write(descriptor, bytes, size);
    if (count <= 0) die("write");
    bytes += count;
    size -= (size_t)count;
  }
}

/* The bytes as the inside of a JSON string; JSON text on one line holds nothing else that needs an escape. */
static void put_escaped(struct buffer *to, const char *bytes, size_t count) {
  char *end = room_for(to, 2 * count);
  for (const char *last = bytes + count; bytes < last; ++bytes) {
    if (*bytes == '"' || *bytes == '\\') *end++ = '\\';
    *end++ = *bytes;
  }
  to->size = (size_t)(end - to->bytes);
}

static void put_forwarded(void) {
  static const char request[] = "{\"id\":1,\"jsonrpc\":\"2.0\",\"method\":\"outline.list\"}\n";
  write_all(application, request, sizeof request - 1);
  response.size = 0;
  do {
    if (fill(&response, application) == 0) die("application");
  } while (response.bytes[response.size - 1] != '\n');
  const char *result = memmem(response.bytes, response.size, "\"result\":", 9);
  if (result == NULL) die("result");
  const size_t size = (size_t)(response.bytes + response.size - 2 - (result + 9));
  put_text(&output, "{\"content\":[{\"text\":\"");
  put_escaped(&output, result + 9, size);
  put_text(&output, "\",\"type\":\"text\"}]}");
}

static void answer(const char *line, size_t size) {
  static const char welcome[] =
      "{\"capabilities\":{\"logging\":{},\"tools\":{\"listChanged\":true}},\"protocolVersion\":\"2025-11-25\","
      "\"serverInfo\":{\"name\":\"peer\",\"version\":\"1\"}}";
  const char *id = memmem(line, size, "\"id\":", 5);
  if (id == NULL) return; /* a notification */
  put_text(&output, "{\"id\":");
  put(&output, id + 5, strcspn(id + 5, ",}"));
  put_text(&output, ",\"jsonrpc\":\"2.0\",\"result\":");
  if (memmem(line, size, "\"method\":\"initialize\"", 21) != NULL) {
    put_text(&output, welcome);
  } else {
    put_forwarded();
  }
  put_text(&output, "}\n");
}

static void flush_output(void) {
  write_all(STDOUT_FILENO, output.bytes, output.size);
  output.size = 0;
}

/* Answers the whole lines of the input, each at once, and keeps what is left. */
static void answer_lines(struct buffer *input) {
  char *line = input->bytes, *feed;
  while ((feed = memchr(line, '\n', (size_t)(input->bytes + input->size - line))) != NULL) {
    answer(line, (size_t)(feed - line));
    line = feed + 1;
    flush_output();
  }
  input->size -= (size_t)(line - input->bytes);
  memmove(input->bytes, line, input->size);
}

int main(int count, char **arguments) {
  if (count > 2) return 64;
  if (count == 2) {
    struct sockaddr_un address = {.sun_family = AF_UNIX};
    strncpy(address.sun_path, arguments[1], sizeof address.sun_path - 1);
    application = socket(AF_UNIX, SOCK_STREAM, 0);
    if (connect(application, (struct sockaddr *)&address, sizeof address) != 0) die(arguments[1]);
  }
  struct buffer input = {NULL, 0, 0};
  while (fill(&input, STDIN_FILENO) > 0) answer_lines(&input);
  return 0;
}
