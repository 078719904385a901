// SPDX-License-Identifier: MIT
//
// Runs two commands in turn, so that a busy machine slows both alike, and prints their times, their
// peak memory and the ratio of the first to the second. What they print is dropped.
// Usage: compare_runs RUNS NAME COMMAND... -- NAME COMMAND...
#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char** environ;

struct Side {
  char** command;  // its name, then its words
  double* micros;  // one for each run
  long peak_memory;
};

static double Now(void) {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (double)now.tv_sec * 1e6 + (double)now.tv_nsec / 1e3;
}

// A run that failed would measure something else, so it ends the comparison.
static void RunOnce(struct Side* side, int run, const posix_spawn_file_actions_t* quiet) {
  const double start = Now();
  pid_t child;
  int status = 0;
  struct rusage usage;
  if (posix_spawnp(&child, side->command[1], quiet, NULL, side->command + 1, environ) != 0 ||
      wait4(child, &status, 0, &usage) != child || status != 0) {
    fprintf(stderr, "%s: the run failed\n", side->command[0]);
    exit(1);
  }
  side->micros[run] = Now() - start;
  if (usage.ru_maxrss > side->peak_memory) side->peak_memory = usage.ru_maxrss;
}

static int Ascending(const void* left, const void* right) {
  const double a = *(const double*)left;
  const double b = *(const double*)right;
  return (a > b) - (a < b);
}

static void Print(struct Side* side, int runs) {
  qsort(side->micros, (size_t)runs, sizeof *side->micros, Ascending);
  printf("  %-34s %9.0f us at best %9.0f us median %8ld KiB\n", side->command[0], side->micros[0],
         side->micros[runs / 2], side->peak_memory);
}

static int Usage(void) {
  fputs("usage: compare_runs RUNS NAME COMMAND... -- NAME COMMAND...\n", stderr);
  return 2;
}

int main(int argc, char** argv) {
  int dashes = 4;
  while (dashes < argc && strcmp(argv[dashes], "--") != 0)
    ++dashes;
  const int runs = argc > 1 ? atoi(argv[1]) : 0;
  if (runs < 1 || dashes + 2 >= argc) return Usage();
  argv[dashes] = NULL;
  struct Side sides[] = {{argv + 2, NULL, 0}, {argv + dashes + 1, NULL, 0}};
  posix_spawn_file_actions_t quiet;
  posix_spawn_file_actions_init(&quiet);
  posix_spawn_file_actions_addopen(&quiet, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&quiet, STDOUT_FILENO, STDERR_FILENO);
  for (int i = 0; i < 2; ++i)
    sides[i].micros = calloc((size_t)runs, sizeof(double));
  if (sides[0].micros == NULL || sides[1].micros == NULL) return 1;
  for (int run = 0; run < runs; ++run) {
    for (int i = 0; i < 2; ++i)
      RunOnce(&sides[i], run, &quiet);
  }
  for (int i = 0; i < 2; ++i)
    Print(&sides[i], runs);
  printf("  ratio %.2f at best, %.2f median\n", sides[0].micros[0] / sides[1].micros[0],
         sides[0].micros[runs / 2] / sides[1].micros[runs / 2]);
  return 0;
}
