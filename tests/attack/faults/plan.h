/* Which call of a kind fails: the environment says "KIND N once 5" or "KIND N on 5", with the number of the error. */
#ifndef NADIR_FAULTS_PLAN_H
#define NADIR_FAULTS_PLAN_H

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

typedef struct Plan {
  char kind[16];
  long first;
  int on; /* all behind the first one fail too */
  int error;
} Plan;

/* A plan whose kind is empty when nothing is to fail. */
static Plan readPlan(void) {
  Plan plan = {"", 0, 0, 0};
  char mode[8] = "";
  const char* text = getenv("NADIR_FAULT");
  if (text && sscanf(text, "%15s %ld %7s %d", plan.kind, &plan.first, mode, &plan.error) != 4) plan.kind[0] = 0;
  plan.on = strcmp(mode, "on") == 0;
  return plan;
}

static int isDue(const Plan* plan, long call) { return plan->on ? call >= plan->first : call == plan->first; }

/* Adds a line to the file that NADIR_FAULT_COUNTS names. */
static void writeCount(const char* kind, long count) {
  char line[64];
  const char* path = getenv("NADIR_FAULT_COUNTS");
  if (!path) return;
  const int file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  const int length = snprintf(line, sizeof line, "%s %ld\n", kind, count);
  if (file < 0 || write(file, line, (size_t)length) != length) abort();
  close(file);
}

#endif
