// The self-test build of Halvora Pro: the application's AppKit views over the
// recorded machine instead of the Mac's displays, driven by a simulator
// script (SelfTest). Never part of the application users get. Sources:
// Apple's NSApplication documentation (finishLaunching, activation policy).

#include "MacServices.hpp"
#include "SelfTestViews.hpp"

#import <AppKit/AppKit.h>
#include <CliIO.hpp>
#include <SelfTest.hpp>
#include <exception>
#include <iostream>

int main(int argc, const char* argv[]) {
    @autoreleasepool {
        try {
            const std::vector<std::string> words(argv + 1, argv + argc);
            const auto test = Halvora::SelfTest::parse(words);
            if (!test) {
                std::cout << Halvora::SelfTest::help();
                return 0;
            }
            NSApplication* app = [NSApplication sharedApplication];
            [app setActivationPolicy:NSApplicationActivationPolicyAccessory];
            [app finishLaunching];

            using namespace HalvoraPro;
            const auto localize = MacServices::localizer();
            const auto views = std::make_shared<MacShellView>(localize);
            const auto shown = std::make_shared<SelfTestView>(views, localize);
            AppKitScreen screen(views, shown);
            Halvora::Simulator::RealViews real{
                shown, std::make_shared<AppKitGestures>(views, localize),
                [views](Application& application) { views->attach(application.menu()); },
                [shown] { shown->clear(); }};
            return test->run(std::move(real), screen, std::cout, std::cerr);
        } catch (const Halvora::CliError& error) {
            std::cerr << "halvora-pro-selftest: " << error.what() << "\n";
            return error.status();
        } catch (const std::exception& error) {
            std::cerr << "halvora-pro-selftest: " << error.what() << "\n";
            return 1;
        }
    }
}
