#include "simulator/sim_command/olt_sim.hpp"

#include <string>
#include <vector>

int main(int count, char** arguments) {
    return xpon::simulator::run_olt_sim(std::vector<std::string>(arguments + 1, arguments + count));
}
